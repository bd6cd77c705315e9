// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/focus_keys.h"

#include "viewer/session/session.h"
#include "viewer/window/focus_panel.h"

#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>

namespace tesmor::apps {

namespace {

// Its own keys are worth more than moving the focus.
bool usesArrows(const QWidget* widget)
{
    return qobject_cast<const QAbstractSpinBox*>(widget) != nullptr ||
           qobject_cast<const QLineEdit*>(widget) != nullptr || qobject_cast<const QComboBox*>(widget) != nullptr ||
           qobject_cast<const QAbstractItemView*>(widget) != nullptr ||
           qobject_cast<const QAbstractSlider*>(widget) != nullptr;
}

} // namespace

FocusKeys::FocusKeys(QWidget& window, Session& session, const FocusPanel& panel)
    : window_(window), session_(session), panel_(panel)
{
    qApp->installEventFilter(this);
}

void FocusKeys::press(int key)
{
    session_.move(stepsOf(key));
}

int FocusKeys::stepsOf(int key) const
{
    switch (key) {
    case Qt::Key_Up:
        return panel_.fineSteps();
    case Qt::Key_Down:
        return -panel_.fineSteps();
    case Qt::Key_PageUp:
        return FocusPanel::COARSE * panel_.fineSteps();
    case Qt::Key_PageDown:
        return -FocusPanel::COARSE * panel_.fineSteps();
    default:
        return 0;
    }
}

bool FocusKeys::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::WindowDeactivate && watched == &window_)
        session_.letGo();
    const bool isPressed = event->type() == QEvent::KeyPress;
    if ((!isPressed && event->type() != QEvent::KeyRelease) || QApplication::activeWindow() != &window_)
        return false;
    const QWidget* const focused = QApplication::focusWidget();
    if (watched != (focused != nullptr ? focused : &window_) || usesArrows(focused))
        return false;
    const auto* const key = static_cast<QKeyEvent*>(event);
    const int steps = stepsOf(key->key());
    if (steps == 0 || (key->modifiers() & ~Qt::KeypadModifier))
        return false;
    if (isPressed && key->isAutoRepeat())
        session_.moveHeld(steps);
    else if (isPressed)
        session_.move(steps);
    else if (!key->isAutoRepeat())
        session_.letGo();
    return true;
}

} // namespace tesmor::apps
