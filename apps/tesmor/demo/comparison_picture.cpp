// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/comparison_picture.h"

#include "charts/chart_axis.h"

#include <QPainter>

#include <algorithm>
#include <new>

namespace tesmor::apps {

namespace {

constexpr int PANEL_WIDTH = 480; // pixels
constexpr int GAP = 12;
constexpr int TITLE_HEIGHT = 40;
constexpr int NOTE_HEIGHT = 34;
constexpr int CELLS = 16; // per side, of the grid on which the detail is chosen
constexpr int DETAIL_CELLS = CELLS / 4;

int heightOf(const QSize& size)
{
    return std::max(1, PANEL_WIDTH * size.height() / size.width());
}

QImage scaled(const QImage& image)
{
    const QSize size(PANEL_WIDTH, heightOf(image.size()));
    return image.convertToFormat(QImage::Format_RGB32).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QRect cell(const QSize& size, int column, int row, int cells)
{
    const int left = size.width() * column / CELLS;
    const int top = size.height() * row / CELLS;
    return QRect(left, top, size.width() * cells / CELLS, size.height() * cells / CELLS);
}

double squaredDifference(const QImage& a, const QImage& b, const QRect& part)
{
    double sum = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const uchar* const rowA = a.constScanLine(y);
        const uchar* const rowB = b.constScanLine(y);
        for (int i = 3 * part.left(); i < 3 * (part.right() + 1); ++i)
            sum += (rowA[i] - rowB[i]) * (rowA[i] - rowB[i]);
    }
    return sum;
}

} // namespace

QImage compare(const std::vector<ComparedPicture>& pictures, const QRect& detail)
{
    const int panelHeight = heightOf(pictures.front().image.size());
    const int detailHeight = heightOf(detail.size());
    const int count = static_cast<int>(pictures.size());
    QImage picture(count * (PANEL_WIDTH + GAP) + GAP,
                   TITLE_HEIGHT + panelHeight + GAP + detailHeight + NOTE_HEIGHT + GAP, QImage::Format_RGB32);
    if (picture.isNull())
        throw std::bad_alloc();
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    int left = GAP;
    for (const ComparedPicture& compared : pictures) {
        painter.setPen(Qt::black);
        painter.setFont(chartFont(15, true));
        painter.drawText(QRect(left, 0, PANEL_WIDTH, TITLE_HEIGHT), Qt::AlignCenter, compared.title);
        painter.drawImage(left, TITLE_HEIGHT, scaled(compared.image));
        const int detailTop = TITLE_HEIGHT + panelHeight + GAP;
        painter.drawImage(left, detailTop, scaled(compared.image.copy(detail)));
        painter.setFont(chartFont(13));
        painter.drawText(QRect(left, detailTop + detailHeight, PANEL_WIDTH, NOTE_HEIGHT), Qt::AlignCenter,
                         compared.note);
        const double scale = static_cast<double>(PANEL_WIDTH) / compared.image.width();
        painter.setPen(QPen(QColor(255, 200, 0), 2));
        painter.drawRect(QRectF(left + detail.left() * scale, TITLE_HEIGHT + detail.top() * scale,
                                detail.width() * scale, detail.height() * scale));
        painter.drawRect(QRectF(left + 1, detailTop + 1, PANEL_WIDTH - 2, detailHeight - 2));
        left += PANEL_WIDTH + GAP;
    }
    return picture;
}

QRect mostDifferentPart(const QImage& image, const QImage& reference)
{
    QRect best;
    double most = -1;
    for (int row = 0; row + DETAIL_CELLS <= CELLS; ++row) {
        for (int column = 0; column + DETAIL_CELLS <= CELLS; ++column) {
            const QRect part = cell(image.size(), column, row, DETAIL_CELLS);
            const double difference = squaredDifference(image, reference, part);
            if (difference > most) {
                most = difference;
                best = part;
            }
        }
    }
    return best;
}

} // namespace tesmor::apps
