// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/session.h"

#include "tesmor.h"

#include <utility>

namespace tesmor::apps {

void Session::end(std::int32_t result, const QImage& fused)
{
    const Operation operation = *operation_;
    const bool wasStopped = std::exchange(isStopping_, false);
    operation_.reset();
    ticks_.stop();
    const bool succeeded = result == TESMOR_SUCCESS || result == TESMOR_STACK_DONE;
    if (operation == Operation::FOCUS) {
        source_.tap().endRecord();
        updateCurve(true, succeeded);
    }
    if (succeeded) {
        steps_.pop_front();
    } else {
        steps_.clear();
        moves_.clear();
    }
    QString text = succeeded ? succeed(operation, fused) : fail(operation, result);
    // A move goes on to its end, but not what was to follow it.
    const bool wasCut = wasStopped && operation == Operation::MOVE && !isByHand_;
    if (succeeded && wasCut && source_.state() != LiveSource::State::LOST)
        text = textOf(operation, TESMOR_ABORTED)->text;
    emit moved();
    emit ended(operation, succeeded && !wasCut, text);
    driveRelease_.start();
    beginNext();
    if (isBusy())
        return;
    emit changed();
    if (const auto act = std::exchange(whenIdle_, {}); act && succeeded)
        act();
}

// Returns a line that tells of it.
QString Session::succeed(Operation operation, const QImage& fused)
{
    emit withdrawn("command");
    if (operation != Operation::FUSION) {
        forgetDriveFault();
        emit withdrawn("camera");
    }
    const double seconds = static_cast<double>(operationTime_.elapsed()) / 1000;
    const auto slices = static_cast<int>(slices_.size());
    switch (operation) {
    case Operation::FOCUS:
        losePosition();
        emit curveEnded(true);
        return tr("In focus after %1 s.").arg(seconds, 0, 'f', 1);
    case Operation::STACK:
        pace_.learn(plan_, seconds);
        return tr("%n slices captured in %1 s.", nullptr, slices).arg(seconds, 0, 'f', 1);
    case Operation::FUSION:
        emit withdrawn("memory");
        fused_ = fused;
        return tr("%n slices fused in %1 s.", nullptr, slices).arg(seconds, 0, 'f', 1);
    case Operation::MOVE:
        break;
    }
    countedPosition_ += std::exchange(stepsOfMove_, 0);
    return {};
}

// Likewise.
QString Session::fail(Operation operation, std::int32_t result)
{
    if (operation != Operation::FUSION)
        losePosition();
    if (operation == Operation::FOCUS)
        emit curveEnded(false);
    const auto message = textOf(operation, result);
    if (!message || source_.state() == LiveSource::State::LOST) // which was told already
        return {};
    if (result == TESMOR_ABORTED) // which the user did, and wants no bar for
        return message->text;
    if (message->topic == "drive") {
        driveFailure_ = message;
        library_.findDrives();
    } else {
        emit told(*message);
    }
    return textOfFailure(operation);
}

// Where the focus is now, only a drive that tells its position knows.
void Session::losePosition()
{
    if (source_.microscope())
        return;
    countedPosition_ = 0;
    first_.reset();
    last_.reset();
}

void Session::tick()
{
    if (operation_ == Operation::FOCUS)
        updateCurve(false, false);
    else if (operation_ == Operation::FUSION)
        emit fusionProgressed(library_.fusionProgress());
    emit moved();
}

void Session::updateCurve(bool ended, bool found)
{
    const auto& microscope = source_.microscope();
    curve_.update(microscope ? microscope->requestLog() : std::vector<microscope::LoggedRequest>(),
                  source_.tap().record(), ended, found);
    emit curveGrew();
}

void Session::addSlice(const QImage& slice)
{
    if (operation_ != Operation::STACK)
        return; // it comes late, from a stack that was cancelled
    if (slice.isNull()) {
        stop();
        emit told({Severity::ERROR,
                   "memory",
                   tr("There is no memory for another slice; the stack has been stopped."),
                   tr("Take fewer slices, or close other programs."),
                   {}});
        return;
    }
    slices_.append(slice);
    emit sliceArrived(slice);
}

void Session::takeFrame()
{
    const QImage frame = source_.tap().take();
    if (frame.isNull())
        return;
    frameSize_ = frame.size();
    emit frameArrived(frame, source_.tap().sharpness());
}

void Session::followSource(LiveSource::State state, const QString& text)
{
    using State = LiveSource::State;
    const QString title = source_.source().title;
    if (state == State::LIVE)
        emit withdrawn("camera");
    else if (state == State::STALLED)
        emit told({Severity::WARNING, "camera", tr("%1: %2.").arg(title, text), {}, {}});
    else if (state == State::LOST)
        emit told({Severity::ERROR, "camera", tr("%1: %2.").arg(title, text), {}, tr("Reconnect")});
    if (state == State::LOST && isBusy() && operation_ != Operation::FUSION)
        stop();
    emit changed();
}

// After a failure, which is told in the words of whoever knows more of it; then again until a drive answers.
void Session::tellOfDrives(const std::vector<DriveUnit>& units)
{
    const auto message = textOf(units);
    if (const auto failure = std::exchange(driveFailure_, {})) {
        Message news = message.value_or(*failure);
        if (units.empty() && source_.source().isSimulated) { // its drive comes back with it
            news.remedy = tr("Reconnect the virtual microscope, and try again.");
            news.action = tr("Reconnect");
        }
        emit told(news);
        isDriveMissed_ = message.has_value();
    } else if (!message) {
        forgetDriveFault();
    }
    if (isDriveMissed_)
        driveWatch_.start();
}

void Session::forgetDriveFault()
{
    driveFailure_.reset();
    isDriveMissed_ = false;
    driveWatch_.stop();
    emit withdrawn("drive");
}

void Session::lookForDrives()
{
    if (isBusy())
        driveWatch_.start();
    else
        library_.findDrives();
}

} // namespace tesmor::apps
