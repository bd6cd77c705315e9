// SPDX-License-Identifier: GPL-2.0-or-later
// The keys that move the focus by hand, wherever in the window they are pressed: the arrows for fine and the page keys
// for coarse steps, unless the widget that has the keys needs them itself.
#pragma once

#include <QObject>

class QWidget;

namespace tesmor::apps {

class FocusPanel;
class Session;

class FocusKeys : public QObject {
public:
    // All of them outlive it.
    //   panel   says how large a step is
    FocusKeys(QWidget& window, Session& session, const FocusPanel& panel);

    // As if that key had been pressed once, for a menu.
    void press(int key);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int stepsOf(int key) const; // 0: not one of these keys

    QWidget& window_;
    Session& session_;
    const FocusPanel& panel_;
};

} // namespace tesmor::apps
