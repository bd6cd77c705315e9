// What a subcommand of `tesmor` is, and how it fails. main.cpp has the table of them.
#pragma once

#include <QString>

#include <stdexcept>

namespace tesmor::apps {

struct Subcommand {
    const char* name;
    const char* summary; // one line for `tesmor --help`
    // argv[0] is "tesmor NAME". Creates the Qt application that it needs. Returns the exit status, or throws UsageError,
    // UserError, Interrupted or std::bad_alloc.
    int (*run)(int argc, char** argv);
};

constexpr int STATUS_DONE = 0;
constexpr int STATUS_FAILED = 1;
constexpr int STATUS_USAGE = 2;
constexpr int STATUS_INTERRUPTED = 130;

// Something outside the program is wrong. The message is one line: what it is about, what is wrong, what to do.
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
