// SPDX-License-Identifier: GPL-2.0-or-later
// The sharpness of the live frame as a number, with its recent history and its maximum. The plot begins a little below
// the lowest that it shows, so that the small differences near the focus are seen.
#pragma once

#include <QWidget>

#include <deque>
#include <optional>

namespace tesmor::apps {

class SharpnessMeter : public QWidget {
    Q_OBJECT

public:
    explicit SharpnessMeter(QWidget* parent = nullptr);

    std::optional<double> maximum() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public slots:
    // For every frame that was measured; 0 or more.
    void addSample(double sharpness);
    // Forgets history and maximum: another objective, another place. A double click does so, too.
    void reset();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::deque<double> history_; // the latest at the end
    std::optional<double> maximum_;
};

} // namespace tesmor::apps
