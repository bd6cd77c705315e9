// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/focus_wheel.h"

#include <QWheelEvent>

#include <utility>

namespace tesmor::apps {

namespace {

constexpr int NOTCHES = 40; // of one turn
constexpr int COARSE = 10;  // notches
constexpr int ANGLE_OF_NOTCH = 120;

} // namespace

FocusWheel::FocusWheel(QWidget* parent) : QDial(parent)
{
    setRange(0, NOTCHES - 1);
    setWrapping(true);
    setPageStep(COARSE);
    setNotchesVisible(true);
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

} // namespace tesmor::apps
