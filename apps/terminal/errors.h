// SPDX-License-Identifier: GPL-2.0-or-later
// How our programs fail: the exit status, and the one line that says why.
#pragma once

#include <QString>

#include <stdexcept>

namespace tesmor::apps {

constexpr int STATUS_DONE = 0;
constexpr int STATUS_FAILED = 1;
constexpr int STATUS_USAGE = 2;
constexpr int STATUS_INTERRUPTED = 130;

// Something outside the program is wrong. The message is one line: the culprit, the problem, the remedy.
class UserError : public std::runtime_error {
public:
    explicit UserError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

// The command line makes no sense. The message is one line.
class UsageError : public UserError {
public:
    using UserError::UserError;
};

} // namespace tesmor::apps
