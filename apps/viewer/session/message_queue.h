// SPDX-License-Identifier: GPL-2.0-or-later
// What is to be told to the user, one message per topic.
#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace tesmor::apps {

enum class Severity { INFORMATION, WARNING, ERROR };

struct Message {
    Severity severity = Severity::INFORMATION;
    QString topic; // what it is about: "camera", "drive", "save"; a newer message replaces it, and the end of the fault
                   // takes it away
    QString text;  // what happened, one sentence
    QString remedy; // what to do, one sentence; may be empty
    QString action; // of a button that does it, such as "Reconnect"; empty for none
};

// The most severe first; among equals, the latest first.
class MessageQueue {
public:
    void post(const Message& message);
    bool withdraw(const QString& topic); // false if there was none
    std::optional<Message> current() const;
    int count() const;

private:
    QList<Message> messages_;
};

} // namespace tesmor::apps
