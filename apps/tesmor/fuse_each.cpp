// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/fuse_each.h"

#include "host/fusion_memory.h"
#include "host/library_session.h"
#include "images/output_file.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"
#include "terminal/text.h"
#include "tesmor/batch_job.h"
#include "tesmor/batch_report.h"

#include <QDir>
#include <QFileInfo>

#include <exception>
#include <future>
#include <new>

namespace tesmor::apps {

namespace {

// A stack that is planned and, where the memory allows it beside the one before, read.
struct Ahead {
    StackPlan plan;
    std::optional<LoadedStack> stack;
};

// Nothing can be written any more, so no further stack is worth its time.
struct OutputLost : UserError {
    using UserError::UserError;
};

class Batch {
public:
    explicit Batch(const EachRequest& request)
        : request_(request), jobs_(batchJobs(request.stacks, request.folder, request.format)),
          report_(request.json    ? BatchReport::Style::JSON
                  : request.quiet ? BatchReport::Style::ERRORS_ONLY
                                  : BatchReport::Style::TABLE,
                  jobs_)
    {
    }

    int run();

private:
    bool isSkipped(const BatchJob& job) const;
    void startNext(std::size_t job, std::uint64_t memoryBeside);
    Ahead takeNext();
    void runJob(std::size_t job);
    void finishJob(const BatchJob& job, const StackPlan& plan, const LoadedStack& stack);
    void requireFolder() const;
    void announce(const StackPlan& plan);

    const EachRequest& request_;
    const std::vector<BatchJob> jobs_;
    BatchReport report_;
    std::uint64_t announced_ = 0; // bytes
    std::size_t nextJob_ = 0;     // which is read ahead
    std::future<Ahead> next_;
};

bool Batch::isSkipped(const BatchJob& job) const
{
    return request_.skipExisting && QFileInfo(job.output).isFile(); // which is complete: see writeOutputFile
}

void Batch::requireFolder() const
{
    if (!QFileInfo(request_.folder).isDir())
        throw OutputLost(request_.folder + ": the folder for the results has vanished; go on with --skip-existing "
                                           "when it is back");
}

// The figures of a stack are known once it is planned, so they are told with the first, and with any larger one.
void Batch::announce(const StackPlan& plan)
{
    if (plan.memory <= announced_ || request_.quiet)
        return;
    announced_ = plan.memory;
    printLine(QString("A stack of %1 takes about %2 of memory, with the next one read meanwhile")
                  .arg(planText(plan), memoryText(2 * plan.memory)));
}

// On a thread of its own, the first job from this one on that is not skipped.
void Batch::startNext(std::size_t job, std::uint64_t memoryBeside)
{
    while (job < jobs_.size() && isSkipped(jobs_[job]))
        ++job;
    nextJob_ = job;
    if (job == jobs_.size())
        return;
    next_ = std::async(std::launch::async, [this, job, memoryBeside] {
        Ahead ahead{planStack(imagesOfStack(jobs_[job].stack), request_.options), {}};
        if (hasMemory(ahead.plan.memory + memoryBeside))
            ahead.stack = loadStack(ahead.plan, request_.options, LiveLine::Style::SILENT);
        return ahead;
    });
}

// The job that was read ahead, ready to be merged.
Ahead Batch::takeNext()
{
    Ahead ahead = next_.get();
    announce(ahead.plan);
    checkStackOutput(jobs_[nextJob_].output, ahead.plan);
    if (!ahead.stack) {
        requireFusionMemory(ahead.plan.memory);
        ahead.stack = loadStack(ahead.plan, request_.options, LiveLine::Style::SILENT);
    }
    return ahead;
}

void Batch::runJob(std::size_t job)
{
    Ahead ahead;
    std::exception_ptr failure;
    try {
        ahead = takeNext();
    } catch (...) {
        failure = std::current_exception();
    }
    startNext(job + 1, failure ? 0 : fusionMemory(ahead.plan.series.size, 0)); // its images are there
    if (failure)
        std::rethrow_exception(failure);
    finishJob(jobs_[job], ahead.plan, *ahead.stack);
}

void Batch::finishJob(const BatchJob& job, const StackPlan& plan, const LoadedStack& stack)
{
    const LiveLine::Style style = LiveLine::styleOfOutput(request_.quiet);
    const QImage image = mergeStack(plan, stack, style == LiveLine::Style::IN_PLACE ? style : LiveLine::Style::SILENT);
    requireFolder();
    try {
        writeOutputFile(job.output, image);
    } catch (const UserError& error) {
        throw OutputLost(QString("%1; then go on with --skip-existing").arg(error.what()));
    }
    for (const QString& name : stack.leftOut)
        report_.printError(name + ": left out; it cannot be aligned");
    report_.addDone(job, figuresOf(stack, image), stack.shift);
}

int Batch::run()
{
    const LibrarySession session;
    startNext(0, 0);
    for (std::size_t i = 0; i < jobs_.size(); ++i) {
        const BatchJob& job = jobs_[i];
        try {
            requireFolder();
            if (i < nextJob_)
                report_.addSkipped(job);
            else
                runJob(i);
        } catch (const OutputLost& error) {
            report_.addFailed(job, error.what());
            break;
        } catch (const UserError& error) {
            report_.addFailed(job, error.what());
        } catch (const std::bad_alloc&) {
            report_.addFailed(job, job.stack + ": not enough memory; close other programs");
        } catch (const Interrupted&) {
            report_.printError(QString("interrupted after %1 of %2 stacks; go on with --skip-existing")
                                   .arg(report_.doneCount())
                                   .arg(jobs_.size()));
            leaveInterrupted(); // does not wait for the stack that is read ahead
        }
    }
    report_.printTotals();
    return report_.hasFailures() ? STATUS_FAILED : STATUS_DONE;
}

} // namespace

int fuseEach(const EachRequest& request)
{
    if (!QDir().mkpath(request.folder))
        throw UserError(request.folder + ": cannot be created; choose another folder with -o");
    if (!QFileInfo(request.folder).isWritable())
        throw UserError(request.folder + ": cannot be written to; check its permissions, or choose another with -o");
    return Batch(request).run();
}

} // namespace tesmor::apps
