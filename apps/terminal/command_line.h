// What the subcommands' command lines and answers share.
#pragma once

#include <QCommandLineParser>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <cstdint>

namespace tesmor::apps {

// Adds --help and parses. False when the help was asked for, and printed. Throws UsageError.
bool parseCommandLine(QCommandLineParser& parser, const QStringList& arguments);

// For a subcommand that takes options alone. Throws UsageError for anything else.
void refuseArguments(const QCommandLineParser& parser);

// The number that stands for `what` on the command line. Both throw UsageError, which names `what`, when it is none or
// outside its range.
std::int64_t integerOf(const QString& what, const QString& text, std::int64_t least, std::int64_t most);
double numberOf(const QString& what, const QString& text, double least, double most);

// One line on the standard output, for a script.
void printJson(const QJsonObject& object);

} // namespace tesmor::apps
