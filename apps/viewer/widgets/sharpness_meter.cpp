// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/sharpness_meter.h"

#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace tesmor::apps {

namespace {

constexpr std::size_t HISTORY = 200; // samples
constexpr double LEAST_SPAN = 0.1;   // of the maximum: less would show noise as mountains
constexpr double LINES = 4;

} // namespace

SharpnessMeter::SharpnessMeter(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Sharpness"));
    setToolTip(
        tr("Sharpness of the live image, its recent course and its maximum. A double click, or Delete, starts again."));
}

std::optional<double> SharpnessMeter::maximum() const
{
    return maximum_;
}

QSize SharpnessMeter::sizeHint() const
{
    return {fontMetrics().averageCharWidth() * 36, static_cast<int>(fontMetrics().height() * LINES)};
}

QSize SharpnessMeter::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 22, sizeHint().height()};
}

void SharpnessMeter::addSample(double sharpness)
{
    history_.push_back(sharpness);
    if (history_.size() > HISTORY)
        history_.pop_front();
    maximum_ = std::max(maximum_.value_or(sharpness), sharpness);
    update();
}

void SharpnessMeter::reset()
{
    history_.clear();
    maximum_.reset();
    update();
}

void SharpnessMeter::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QColor text = palette().color(QPalette::WindowText);
    QFont large = font();
    large.setPointSizeF(font().pointSizeF() * 1.6);
    large.setBold(true);
    const QFontMetrics largeMetrics(large);
    const QString title = tr("Sharpness");
    const int left = std::max({largeMetrics.horizontalAdvance("888.88"), fontMetrics().horizontalAdvance(title),
                               fontMetrics().horizontalAdvance(tr("max %1").arg("888.88"))}) +
                     8;
    const QLocale locale;
    const QString value = history_.empty() ? QString("–") : locale.toString(history_.back(), 'f', 2);
    const QRect numbers = rect().adjusted(0, 2, 0, -2);
    painter.setPen(text);
    painter.drawText(numbers, Qt::AlignLeft | Qt::AlignTop, title);
    painter.setFont(large);
    painter.drawText(numbers, Qt::AlignLeft | Qt::AlignVCenter, value);
    painter.setFont(font());
    if (maximum_)
        painter.drawText(numbers, Qt::AlignLeft | Qt::AlignBottom,
                         tr("max %1").arg(locale.toString(*maximum_, 'f', 2)));

    const QRectF plot = rect().toRectF().adjusted(left + 8, 4, -4, -4);
    painter.fillRect(plot, palette().color(QPalette::Base));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(plot);
    if (hasFocus()) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    if (!maximum_ || *maximum_ <= 0)
        return;
    const double lowest = history_.empty() ? *maximum_ : *std::ranges::min_element(history_);
    const double span = std::max(*maximum_ - lowest, *maximum_ * LEAST_SPAN);
    const double bottom = *maximum_ - 1.1 * span;
    const auto heightOf = [&](double sharpness) {
        return plot.bottom() - (sharpness - bottom) / (1.25 * span) * plot.height();
    };
    painter.setRenderHint(QPainter::Antialiasing);
    QPolygonF line;
    double x = plot.right() - 1 - static_cast<double>(history_.size() - 1) * plot.width() / HISTORY;
    for (const double sharpness : history_) {
        line << QPointF(x, heightOf(sharpness));
        x += plot.width() / HISTORY;
    }
    QPainterPath area;
    area.addPolygon(QPolygonF(line) << QPointF(line.last().x(), plot.bottom())
                                    << QPointF(line.first().x(), plot.bottom()));
    QColor colour = palette().color(QPalette::Highlight);
    painter.setClipRect(plot);
    painter.setPen(QPen(colour, 2));
    painter.drawPolyline(line);
    colour.setAlphaF(0.25F);
    painter.fillPath(area, colour);
    painter.setPen(QPen(text, 1, Qt::DashLine));
    painter.drawLine(QPointF(plot.left(), heightOf(*maximum_)), QPointF(plot.right(), heightOf(*maximum_)));
}

void SharpnessMeter::mouseDoubleClickEvent(QMouseEvent*)
{
    reset();
}

void SharpnessMeter::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete)
        reset();
    else
        QWidget::keyPressEvent(event);
}

} // namespace tesmor::apps
