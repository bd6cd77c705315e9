// SPDX-License-Identifier: GPL-2.0-or-later
// A bar above the image that tells what went wrong and what to do, without stopping anything. Hidden while there is
// nothing to tell.
#pragma once

#include "viewer/session/message_queue.h"

#include <QFrame>

class QLabel;
class QPushButton;
class QToolButton;

namespace tesmor::apps {

class MessageBar : public QFrame {
    Q_OBJECT

public:
    explicit MessageBar(QWidget* parent = nullptr);

    std::optional<Message> current() const;

public slots:
    void post(const tesmor::apps::Message& message); // replaces the one of its topic
    void withdraw(const QString& topic);             // when the fault is over

signals:
    void actionTriggered(const QString& topic); // the message's button; the message goes
    void dismissed(const QString& topic);       // by the user

protected:
    void changeEvent(QEvent* event) override;

private:
    void showCurrent();
    void followPalette();

    MessageQueue queue_;
    QLabel* icon_;
    QLabel* text_;
    QLabel* more_;
    QPushButton* action_;
    QToolButton* dismiss_;
};

} // namespace tesmor::apps
