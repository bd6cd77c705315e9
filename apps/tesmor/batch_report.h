// SPDX-License-Identifier: GPL-2.0-or-later
// What a batch says of its stacks as they end.
#pragma once

#include "tesmor/batch_job.h"

#include <QJsonObject>
#include <QString>

#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

namespace tesmor::apps {

// Prints a table on standard output, a row for each stack, or a line of JSON for each; failures also on standard error.
class BatchReport {
public:
    enum class Style { TABLE, JSON, ERRORS_ONLY };

    // Before anything is decoded: see DecoderSession, which takes the standard error away meanwhile.
    BatchReport(Style style, const std::vector<BatchJob>& jobs);

    // The stack has ended. Of a failure, `figures` may be empty, and `problem` names culprit and remedy.
    //   shift   of the images against one another, pixels, if it is worth a word
    void addDone(const BatchJob& job, const QJsonObject& figures, std::optional<double> shift);
    void addSkipped(const BatchJob& job);
    void addFailed(const BatchJob& job, const QString& problem);

    // On standard error.
    void printError(const QString& text) const;

    // How many of each there were, and how fast.
    void printTotals() const;

    std::size_t doneCount() const
    {
        return done_;
    }
    bool hasFailures() const
    {
        return !failed_.isEmpty();
    }

private:
    using Clock = std::chrono::steady_clock;

    void add(const BatchJob& job, const QString& result, QJsonObject figures, const QString& remark = {});

    const Style style_;
    const std::size_t jobCount_;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> errors_; // a duplicate of standard error
    qsizetype nameWidth_ = 5;
    const Clock::time_point start_ = Clock::now();
    Clock::time_point last_ = start_;
    std::size_t done_ = 0;
    std::size_t skipped_ = 0;
    QStringList failed_;
};

} // namespace tesmor::apps
