// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/slice_strip.h"

#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QWheelEvent>

namespace tesmor::apps {

namespace {

constexpr QSize THUMBNAIL(112, 84); // view pixels

// A grey place for a slice that has not come.
QPixmap emptyPlace(const QPalette& palette)
{
    QPixmap picture(THUMBNAIL);
    picture.fill(palette.color(QPalette::AlternateBase));
    QPainter painter(&picture);
    painter.setPen(QPen(palette.color(QPalette::Mid), 1, Qt::DashLine));
    painter.drawRect(picture.rect().adjusted(0, 0, -1, -1));
    return picture;
}

// A style would tint it.
QIcon framedWhenSelected(const QPixmap& thumbnail, const QColor& colour)
{
    constexpr int FRAME = 3;
    QPixmap framed = thumbnail;
    QPainter painter(&framed);
    painter.setPen(QPen(colour, 2 * FRAME)); // half of it outside
    painter.drawRect(QRectF(QPointF(0, 0), thumbnail.deviceIndependentSize()));
    painter.end();
    QIcon icon(thumbnail);
    icon.addPixmap(framed, QIcon::Selected);
    return icon;
}

} // namespace

SliceStrip::SliceStrip(QWidget* parent) : QListWidget(parent)
{
    setFlow(QListView::LeftToRight);
    setViewMode(QListView::IconMode);
    setMovement(QListView::Static);
    setWrapping(false);
    setIconSize(THUMBNAIL);
    setSpacing(4);
    setUniformItemSizes(true);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Slices of the stack"));
    setToolTip(tr("The slices of the stack, as they come; choose one to see it"));
    connect(this, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0 && row < sliceCount_)
            emit sliceChosen(row);
    });
}

QSize SliceStrip::sizeHint() const
{
    const int height = THUMBNAIL.height() + fontMetrics().height() + 4 * spacing() + 2 * frameWidth() +
                       horizontalScrollBar()->sizeHint().height();
    return {THUMBNAIL.width() * 6, height};
}

QSize SliceStrip::minimumSizeHint() const
{
    return {THUMBNAIL.width(), sizeHint().height()};
}

void SliceStrip::start(int sliceCount)
{
    const QSignalBlocker blocker(this);
    clear();
    sliceCount_ = 0;
    const QIcon place(emptyPlace(palette()));
    for (int i = 1; i <= sliceCount; ++i) {
        auto* item = new QListWidgetItem(place, QString::number(i), this);
        item->setFlags(Qt::NoItemFlags);
        item->setData(Qt::AccessibleTextRole, tr("Slice %1, not captured yet").arg(i));
    }
}

void SliceStrip::addSlice(const QImage& slice)
{
    if (sliceCount_ == count())
        addItem(new QListWidgetItem(QString::number(count() + 1)));
    QListWidgetItem* filled = item(sliceCount_++);
    const double ratio = devicePixelRatioF();
    // In two steps: a smooth one from the full size would hold up the window.
    const QSize size = THUMBNAIL * ratio;
    const QImage rough = slice.scaled(size * 2, Qt::KeepAspectRatio, Qt::FastTransformation);
    QPixmap thumbnail = QPixmap::fromImage(
        rough.convertToFormat(QImage::Format_RGB32).scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    thumbnail.setDevicePixelRatio(ratio);
    filled->setIcon(framedWhenSelected(thumbnail, palette().color(QPalette::Highlight)));
    filled->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    filled->setData(Qt::AccessibleTextRole, tr("Slice %1").arg(sliceCount_));
    scrollToItem(filled);
}

void SliceStrip::setCurrentSlice(int index)
{
    const QSignalBlocker blocker(this);
    setCurrentRow(index);
    if (currentItem() != nullptr)
        scrollToItem(currentItem());
}

int SliceStrip::sliceCount() const
{
    return sliceCount_;
}

void SliceStrip::wheelEvent(QWheelEvent* event)
{
    const QPoint delta = event->angleDelta();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - (delta.y() != 0 ? delta.y() : delta.x()));
    event->accept();
}

} // namespace tesmor::apps
