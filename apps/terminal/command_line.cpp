// SPDX-License-Identifier: GPL-2.0-or-later
#include "terminal/command_line.h"

#include "terminal/errors.h"

#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>

namespace tesmor::apps {

namespace {

UsageError rangeError(const QString& what, const QString& text, double least, double most)
{
    return UsageError(QString("%1 is '%2'; it must be a number from %3 to %4")
                          .arg(what, text, QString::number(least, 'g', 10), QString::number(most, 'g', 10)));
}

} // namespace

bool parseCommandLine(QCommandLineParser& parser, const QStringList& arguments)
{
    parser.addOption({{"h", "help"}, "Show this help."});
    if (!parser.parse(arguments)) {
        const QString text = parser.errorText();
        throw UsageError(text.chopped(text.endsWith('.') ? 1 : 0));
    }
    if (parser.isSet("help"))
        std::fputs(qPrintable(parser.helpText()), stdout);
    return !parser.isSet("help");
}

void refuseArguments(const QCommandLineParser& parser)
{
    if (!parser.positionalArguments().isEmpty())
        throw UsageError(QString("unexpected argument '%1'").arg(parser.positionalArguments().first()));
}

std::int64_t integerOf(const QString& what, const QString& text, std::int64_t least, std::int64_t most)
{
    bool isNumber = false;
    const std::int64_t number = text.toLongLong(&isNumber);
    if (!isNumber || number < least || number > most)
        throw rangeError(what, text, static_cast<double>(least), static_cast<double>(most));
    return number;
}

double numberOf(const QString& what, const QString& text, double least, double most)
{
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (!isNumber || !(number >= least && number <= most))
        throw rangeError(what, text, least, most);
    return number;
}

QSize sizeOf(const QString& text)
{
    const auto match = QRegularExpression("^(\\d{1,5})x(\\d{1,5})$").match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (std::min(size.width(), size.height()) < 64 || std::max(size.width(), size.height()) > 16384)
        throw UsageError(QString("--size is '%1'; it must look like 640x480, each number from 64 to 16384").arg(text));
    return size;
}

void printJson(const QJsonObject& object)
{
    std::printf("%s\n", QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
}

} // namespace tesmor::apps
