// SPDX-License-Identifier: GPL-2.0-or-later
// A wheel that turns the focus: by mouse wheel, by dragging, and with the keys of a dial. It turns endlessly.
#pragma once

#include <QDial>

namespace tesmor::apps {

class FocusWheel : public QDial {
    Q_OBJECT

public:
    explicit FocusWheel(QWidget* parent = nullptr);

signals:
    void turned(int notches); // positive: clockwise, forward; ten to a coarse step

protected:
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int lastValue_ = 0;
    int angle_ = 0; // of the mouse wheel, not yet a notch, in its eighths of a degree
};

} // namespace tesmor::apps
