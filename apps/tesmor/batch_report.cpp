// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/batch_report.h"

#include "terminal/command_line.h"
#include "terminal/text.h"

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tesmor::apps {

namespace {

constexpr qsizetype WIDEST_NAME = 40; // characters; a longer one shifts its row

void printRow(const QString& name, qsizetype width, const QString& images, const QString& size, const QString& seconds,
              const QString& result)
{
    printLine(QString("%1  %2  %3  %4  %5")
                  .arg(name.leftJustified(width), images.rightJustified(6), size.rightJustified(13),
                       seconds.rightJustified(7), result));
}

} // namespace

BatchReport::BatchReport(Style style, const std::vector<BatchJob>& jobs)
    : style_(style), jobCount_(jobs.size()), errors_(fdopen(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0), "w"), std::fclose)
{
    for (const BatchJob& job : jobs)
        nameWidth_ = std::clamp(job.stack.size(), nameWidth_, WIDEST_NAME);
}

void BatchReport::addDone(const BatchJob& job, const QJsonObject& figures, std::optional<double> shift)
{
    ++done_;
    add(job, "done", figures, shift ? QString("; shifted by up to %1 pixels, see --align").arg(*shift, 0, 'f', 0) : "");
}

void BatchReport::addSkipped(const BatchJob& job)
{
    ++skipped_;
    add(job, "skipped", {});
}

void BatchReport::addFailed(const BatchJob& job, const QString& problem)
{
    failed_.append(job.stack);
    printError(problem);
    add(job, "failed", {{"error", problem}});
}

void BatchReport::add(const BatchJob& job, const QString& result, QJsonObject figures, const QString& remark)
{
    const Clock::time_point now = Clock::now();
    const double seconds = std::chrono::duration<double>(now - last_).count();
    last_ = now;
    if (style_ == Style::TABLE) {
        if (done_ + skipped_ + static_cast<std::size_t>(failed_.size()) == 1)
            printRow("stack", nameWidth_, "images", "pixels", "seconds", "result");
        const bool known = figures.contains("width");
        printRow(job.stack, nameWidth_, known ? QString::number(figures["images"].toInt()) : "",
                 known ? sizeText({figures["width"].toInt(), figures["height"].toInt()}) : "",
                 QString::number(seconds, 'f', 1), result + remark);
    } else if (style_ == Style::JSON) {
        figures["stack"] = job.stack;
        figures["output"] = job.output;
        figures["result"] = result;
        figures["seconds"] = seconds;
        printJson(figures);
        std::fflush(stdout);
    }
}

void BatchReport::printError(const QString& text) const
{
    if (!errors_)
        return; // it was closed from the start
    std::fprintf(errors_.get(), "tesmor fuse: %s\n", qPrintable(text));
    std::fflush(errors_.get());
}

void BatchReport::printTotals() const
{
    if (style_ != Style::TABLE)
        return;
    const std::chrono::duration<double> took = Clock::now() - start_;
    QStringList parts{QString("%1 merged").arg(done_)};
    if (skipped_ > 0)
        parts.append(QString("%1 skipped").arg(skipped_));
    if (!failed_.isEmpty())
        parts.append(QString("%1 failed (%2)").arg(failed_.size()).arg(failed_.join(", ")));
    if (const std::size_t ended = done_ + skipped_ + static_cast<std::size_t>(failed_.size()); ended < jobCount_)
        parts.append(QString("%1 not begun").arg(jobCount_ - ended));
    QString line = QString("%1 in %2").arg(parts.join(", "), durationText(took));
    if (done_ > 0)
        line += QString(": %1 stacks an hour").arg(static_cast<double>(done_) * 3600 / took.count(), 0, 'f', 0);
    printLine(line);
}

} // namespace tesmor::apps
