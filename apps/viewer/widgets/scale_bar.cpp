// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/scale_bar.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QLocale>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

namespace {

constexpr double MARGIN = 12; // view pixels, all of them
constexpr double PADDING = 8;
constexpr double THICKNESS = 4;
constexpr double LONGEST = 160;

} // namespace

QString lengthText(double micrometres)
{
    constexpr int DIGITS = 3;
    const bool isLong = std::abs(micrometres) >= 1000;
    const QString number = QLocale().toString(isLong ? micrometres / 1000 : micrometres, 'g', DIGITS);
    return isLong ? QCoreApplication::translate("ScaleBar", "%1 mm").arg(number)
                  : QCoreApplication::translate("ScaleBar", "%1 µm").arg(number);
}

ScaleBar roundScaleBar(double micrometresPerViewPixel, double most)
{
    const double longest = micrometresPerViewPixel * most;
    const double power = std::pow(10, std::floor(std::log10(longest)));
    const double digit = longest / power;
    const double length = power * (digit < 2 ? 1 : digit < 5 ? 2 : 5);
    return {length / micrometresPerViewPixel, lengthText(length)};
}

void drawScaleBar(QPainter& painter, const QRectF& place, double micrometresPerViewPixel)
{
    const ScaleBar bar = roundScaleBar(micrometresPerViewPixel, std::min(LONGEST, place.width() / 3));
    painter.save();
    QFont font = painter.font();
    font.setBold(true);
    painter.setFont(font);
    const QFontMetricsF metrics(font);
    const double width = std::max(bar.length, metrics.horizontalAdvance(bar.text)) + 2 * PADDING;
    const double height = metrics.height() + THICKNESS + 2 * PADDING;
    const QRectF box(place.right() - MARGIN - width, place.bottom() - MARGIN - height, width, height);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 150));
    painter.drawRoundedRect(box, 4, 4);
    painter.setPen(Qt::white);
    painter.drawText(box.adjusted(0, PADDING / 2, 0, 0), Qt::AlignHCenter | Qt::AlignTop, bar.text);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(
        QRectF(box.center().x() - bar.length / 2, box.bottom() - PADDING - THICKNESS, bar.length, THICKNESS),
        Qt::white);
    painter.restore();
}

} // namespace tesmor::apps
