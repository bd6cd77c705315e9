// SPDX-License-Identifier: GPL-2.0-or-later
// What the command lines and results of all subcommands have in common.
#pragma once

#include <QCommandLineParser>
#include <QJsonObject>
#include <QSize>
#include <QString>
#include <QStringList>

#include <cstdint>

namespace tesmor::apps {

// Adds --help and parses. Returns false if the user asked for help; it is then printed. Throws UsageError.
bool parseCommandLine(QCommandLineParser& parser, const QStringList& arguments);

// For a subcommand that takes only options. Throws UsageError for any other argument.
void refuseArguments(const QCommandLineParser& parser);

// The number given for `what` on the command line. Both throw UsageError, which names `what`, if it is not a number or
// out of range.
std::int64_t integerOf(const QString& what, const QString& text, std::int64_t least, std::int64_t most);
double numberOf(const QString& what, const QString& text, double least, double most);

// The value of --size: WIDTHxHEIGHT of a simulated camera's frames, pixels. Throws UsageError.
QSize sizeOf(const QString& text);

// One line on standard output, for scripts.
void printJson(const QJsonObject& object);

} // namespace tesmor::apps
