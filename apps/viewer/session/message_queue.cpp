// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/message_queue.h"

#include <algorithm>

namespace tesmor::apps {

void MessageQueue::post(const Message& message)
{
    withdraw(message.topic);
    const auto place =
        std::ranges::find_if(messages_, [&](const Message& other) { return other.severity <= message.severity; });
    messages_.insert(place, message);
}

bool MessageQueue::withdraw(const QString& topic)
{
    return messages_.removeIf([&](const Message& message) { return message.topic == topic; }) > 0;
}

std::optional<Message> MessageQueue::current() const
{
    return messages_.isEmpty() ? std::nullopt : std::optional(messages_.first());
}

int MessageQueue::count() const
{
    return static_cast<int>(messages_.size());
}

} // namespace tesmor::apps
