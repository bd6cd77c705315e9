// SPDX-License-Identifier: GPL-2.0-or-later
// What the user asks for; session_events.cpp has what comes of it.
#include "viewer/session/session.h"

#include "host/focus_units.h"
#include "host/fusion_memory.h"
#include "terminal/errors.h"
#include "terminal/text.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tesmor::apps {

namespace {

constexpr int TICK_MS = 100;
constexpr int DRIVE_RELEASE_MS = 3000; // so that another program can have the drive
constexpr int DRIVE_WATCH_MS = 2000;

} // namespace

Session::Session(std::uint16_t magnification) : magnification_(magnification)
{
    ticks_.setInterval(TICK_MS);
    driveRelease_.setInterval(DRIVE_RELEASE_MS);
    driveRelease_.setSingleShot(true);
    driveWatch_.setInterval(DRIVE_WATCH_MS);
    driveWatch_.setSingleShot(true);
    connect(&ticks_, &QTimer::timeout, this, &Session::tick);
    connect(&driveRelease_, &QTimer::timeout, &library_, &Library::releaseDrive);
    connect(&driveWatch_, &QTimer::timeout, this, &Session::lookForDrives);
    connect(&library_, &Library::ended, this, &Session::end);
    connect(&library_, &Library::sliceCaptured, this, &Session::addSlice);
    connect(&library_, &Library::drivesFound, this, &Session::tellOfDrives);
    connect(&library_, &Library::isShutDown, this, &Session::isShutDown);
    connect(&source_, &LiveSource::frameWaits, this, &Session::takeFrame);
    connect(&source_, &LiveSource::stateChanged, this, &Session::followSource);
}

void Session::open(const Source& source)
{
    if (isBusy())
        stop();
    emit withdrawn("camera");
    forgetDriveFault();
    source_.open(source, magnification_);
    losePosition();
}

void Session::reconnect()
{
    open(Source(source_.source()));
}

void Session::setMagnification(std::uint16_t magnification)
{
    if (std::exchange(magnification_, magnification) == magnification)
        return;
    source_.tap().setMagnification(magnification);
    if (source_.source().isSimulated)
        reconnect(); // its objective is one of the microscope's parts
    emit changed();
}

void Session::whenIdle(const std::function<void()>& act)
{
    if (!isBusy())
        return act();
    if (isFree()) {
        moves_.clear();
        whenIdle_ = act;
    }
}

void Session::focus()
{
    if (!isFree() || !canFocus())
        return;
    moves_.clear();
    enqueue(Operation::FOCUS, [this] {
        const auto& microscope = source_.microscope();
        curve_.begin(microscope ? std::optional(microscope->position()) : std::nullopt);
        source_.tap().beginRecord();
        emit curveBegun();
        library_.focus(magnification_);
    });
    beginNext();
}

void Session::move(int steps)
{
    if (!isFree() || !canFocus())
        return;
    moves_.add(steps);
    beginNext();
}

void Session::moveHeld(int steps)
{
    if (!isFree() || !canFocus())
        return;
    moves_.addHeld(steps);
    beginNext();
}

void Session::letGo()
{
    moves_.letGo();
}

void Session::capture(const StackPlan& plan)
{
    if (isBusy() || !canFocus() || !hasMemoryFor(plan))
        return;
    plan_ = plan;
    enqueueStack();
    beginNext();
}

void Session::fuse()
{
    if (isBusy() || slices_.isEmpty())
        return;
    enqueueFusion();
    beginNext();
}

void Session::focusCaptureAndFuse(int slices, int spacing)
{
    const StackPlan plan = planAround(slices, spacing, magnification_);
    if (!isFree() || !canFocus() || !hasMemoryFor(plan))
        return;
    focus();
    plan_ = plan;
    enqueueStack();
    enqueueFusion();
}

void Session::stop()
{
    moves_.clear();
    whenIdle_ = {};
    if (!isBusy())
        return;
    steps_.resize(1);
    isStopping_ = true;
    library_.stop();
    emit changed();
}

void Session::setFirst()
{
    first_ = position();
    emit changed();
}

void Session::setLast()
{
    last_ = position();
    emit changed();
}

void Session::shutDown()
{
    stop();
    source_.close();
    library_.shutDown();
}

bool Session::canFocus() const
{
    return source_.state() == LiveSource::State::LIVE;
}

std::int64_t Session::position() const
{
    const auto& microscope = source_.microscope();
    return microscope ? microscope->position() : countedPosition_;
}

bool Session::hasMemoryFor(const StackPlan& plan)
{
    try {
        requireFusionMemory(memoryOf(plan, frameSize_));
        return true;
    } catch (const UserError&) {
        emit told({Severity::ERROR,
                   "memory",
                   tr("There is not enough memory for %n slices: they need about %1.", nullptr, plan.slices)
                       .arg(memoryText(memoryOf(plan, frameSize_))),
                   tr("Take fewer slices, or close other programs."),
                   {}});
        return false;
    }
}

void Session::enqueue(Operation operation, std::function<void()> begin)
{
    steps_.push_back({operation, std::move(begin)});
}

// In as many moves as it takes.
void Session::enqueueMove(std::int64_t steps)
{
    while (steps != 0) {
        const int part = static_cast<int>(std::clamp<std::int64_t>(steps, -LARGEST_MOVE, LARGEST_MOVE));
        enqueue(Operation::MOVE, [this, part] { beginMove(part); });
        steps -= part;
    }
}

void Session::enqueueStack()
{
    enqueueMove(plan_.wayToStart());
    enqueue(Operation::STACK, [this] {
        slices_.clear();
        fused_ = QImage();
        emit stackBegun();
        library_.captureStack(plan_.magnification, plan_.slices, plan_.spacing);
    });
    enqueueMove(-plan_.wayToStart());
}

void Session::enqueueFusion()
{
    enqueue(Operation::FUSION, [this] {
        emit fusionProgressed(0);
        library_.fuse({slices_.begin(), slices_.end()});
    });
}

void Session::beginMove(int steps)
{
    stepsOfMove_ = steps;
    library_.move(steps);
}

// Does nothing while something runs.
void Session::beginNext()
{
    if (isBusy())
        return;
    isByHand_ = false;
    if (steps_.empty()) {
        enqueueMove(moves_.take());
        isByHand_ = true;
    }
    if (steps_.empty())
        return;
    operation_ = steps_.front().operation;
    operationTime_.start();
    ticks_.start();
    driveRelease_.stop();
    steps_.front().begin();
    emit changed();
}

} // namespace tesmor::apps
