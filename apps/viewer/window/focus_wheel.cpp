// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/focus_wheel.h"

#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace tesmor::apps {

namespace {

constexpr int NOTCHES = 40; // of one turn
constexpr int COARSE = 10;  // notches
constexpr int ANGLE_OF_NOTCH = 120;
constexpr int SIDE = 84; // pixels

} // namespace

FocusWheel::FocusWheel(QWidget* parent) : QDial(parent)
{
    setRange(0, NOTCHES - 1);
    setWrapping(true);
    setFixedSize(SIDE, SIDE);
    setPageStep(COARSE);
    setAccessibleName(tr("Focus wheel"));
    setToolTip(tr("Turn it with the mouse wheel or by dragging to move the focus; with Ctrl held, ten times as far"));
    connect(this, &QDial::valueChanged, this, [this](int value) {
        int notches = value - std::exchange(lastValue_, value);
        if (notches > NOTCHES / 2)
            notches -= NOTCHES;
        else if (notches < -NOTCHES / 2)
            notches += NOTCHES;
        emit turned(notches);
    });
}

void FocusWheel::wheelEvent(QWheelEvent* event)
{
    angle_ += event->angleDelta().y();
    const int notches = angle_ / ANGLE_OF_NOTCH;
    angle_ %= ANGLE_OF_NOTCH;
    event->accept();
    if (notches == 0)
        return;
    const bool isCoarse = event->modifiers().testFlag(Qt::ControlModifier);
    {
        const QSignalBlocker blocker(this);
        setValue((value() + notches % NOTCHES + NOTCHES) % NOTCHES);
        lastValue_ = value();
    }
    emit turned(isCoarse ? COARSE * notches : notches);
}

// In the palette's colours, which a style's own dial may not keep to.
void FocusWheel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect().toRectF().center());
    const double radius = std::min(width(), height()) / 2.0 - 3;
    const QColor text = palette().color(QPalette::WindowText);
    painter.setPen(QPen(hasFocus() ? palette().color(QPalette::Highlight) : palette().color(QPalette::Mid), 2));
    painter.setBrush(palette().color(QPalette::Button));
    painter.drawEllipse(QPointF(), radius, radius);
    QColor notch = text;
    notch.setAlphaF(0.5F);
    painter.setPen(QPen(notch, 1.5));
    painter.rotate(360.0 * value() / NOTCHES);
    for (int i = 0; i < NOTCHES; ++i) {
        painter.drawLine(QPointF(0, radius - 3), QPointF(0, radius - (i % COARSE == 0 ? 12 : 8)));
        painter.rotate(360.0 / NOTCHES);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(isEnabled() ? palette().color(QPalette::Highlight) : notch);
    painter.drawEllipse(QPointF(0, radius * 0.55), radius * 0.13, radius * 0.13);
}

} // namespace tesmor::apps
