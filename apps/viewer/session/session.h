// SPDX-License-Identifier: GPL-2.0-or-later
// A person's session at the microscope: the source, the library, and what the two are doing. It knows no widget. No
// function blocks; everything happens on the thread of this object, the window's.
//
// One thing at a time: while busy, only stop, open and shutDown do anything, and during a move by hand, which is over
// soon, move and focus as well.
#pragma once

#include "viewer/session/focus_curve.h"
#include "viewer/session/library.h"
#include "viewer/session/live_source.h"
#include "viewer/session/message_queue.h"
#include "viewer/session/move_queue.h"
#include "viewer/session/result_text.h"
#include "viewer/session/stack_plan.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <deque>
#include <functional>
#include <optional>

namespace tesmor::apps {

class Session : public QObject {
    Q_OBJECT

public:
    // With that objective. Throws UserError when the library cannot be started.
    explicit Session(std::uint16_t magnification);

    void open(const Source& source);
    void reconnect(); // the last source
    void setMagnification(std::uint16_t magnification);

    // Does it now, or once a move by hand has ended.
    void whenIdle(const std::function<void()>& act);

    void focus();
    void move(int steps);     // motor steps; while busy with another move, the next takes them all
    void moveHeld(int steps); // likewise, by a key that repeats
    void letGo();             // that key
    void capture(const StackPlan& plan);
    void fuse();
    void focusCaptureAndFuse(int slices, int spacing);
    void stop();

    // The two ends of a stack are where the focus is when they are set.
    void setFirst();
    void setLast();

    // Ends everything; `isShutDown` follows as soon as the motor stands and the fusion has given up.
    void shutDown();

    std::optional<Operation> operation() const // that runs; none when idle
    {
        return operation_;
    }

    bool isBusy() const
    {
        return operation_.has_value();
    }

    // Idle, or busy with a move by hand, which is over soon.
    bool isFree() const
    {
        return !isBusy() || isByHand_;
    }

    bool isStopping() const
    {
        return isStopping_;
    }

    bool canFocus() const; // or do anything else that needs the live image
    LiveSource& source()
    {
        return source_;
    }

    std::uint16_t magnification() const
    {
        return magnification_;
    }

    QSize frameSize() const
    {
        return frameSize_;
    }

    // Motor steps from where the session began. Of a real drive, an autofocus or a failure makes a new beginning.
    std::int64_t position() const;
    std::optional<std::int64_t> first() const
    {
        return first_;
    }
    std::optional<std::int64_t> last() const
    {
        return last_;
    }

    const FocusCurve& curve() const
    {
        return curve_;
    }

    const StackPlan& plan() const // of the last stack
    {
        return plan_;
    }

    const StackPace& pace() const
    {
        return pace_;
    }

    const QList<QImage>& slices() const
    {
        return slices_;
    }

    const QImage& fused() const // null when there is none of the slices
    {
        return fused_;
    }

    int fusionProgress() const
    {
        return library_.fusionProgress();
    }

signals:
    void changed(); // operation, stopping, source, ends
    void moved();   // the position
    void frameArrived(const QImage& frame, double sharpness);
    void curveBegun();
    void curveGrew();
    void curveEnded(bool found);
    void stackBegun();
    void sliceArrived(const QImage& slice);
    void fusionProgressed(int percent);
    // One of the operations; `text` is for the status line, and may be empty.
    void ended(tesmor::apps::Operation operation, bool succeeded, const QString& text);
    void told(const tesmor::apps::Message& message);
    void withdrawn(const QString& topic); // of a message: it is over
    void isShutDown();

private:
    struct Step {
        Operation operation;
        std::function<void()> begin;
    };

    void enqueue(Operation operation, std::function<void()> begin);
    void enqueueMove(std::int64_t steps);
    void enqueueStack();
    void enqueueFusion();
    void beginNext();
    void beginMove(int steps);
    void end(std::int32_t result, const QImage& fused);
    QString succeed(Operation operation, const QImage& fused);
    QString fail(Operation operation, std::int32_t result);
    void losePosition();
    void tick();
    void updateCurve(bool ended, bool found);
    void addSlice(const QImage& slice);
    void takeFrame();
    void followSource(LiveSource::State state, const QString& text);
    void tellOfDrives(const std::vector<DriveUnit>& units);
    void lookForDrives();
    void forgetDriveFault();
    bool hasMemoryFor(const StackPlan& plan);

    Library library_;
    std::uint16_t magnification_;
    std::deque<Step> steps_; // the first is the one that runs
    std::optional<Operation> operation_;
    bool isByHand_ = false; // what runs is a move that was asked for by move
    bool isStopping_ = false;
    MoveQueue moves_;
    std::function<void()> whenIdle_;
    int stepsOfMove_ = 0; // of the one that runs
    std::int64_t countedPosition_ = 0;
    std::optional<std::int64_t> first_;
    std::optional<std::int64_t> last_;
    FocusCurve curve_;
    StackPlan plan_;
    StackPace pace_;
    QList<QImage> slices_;
    QImage fused_;
    QSize frameSize_;
    std::optional<Message> driveFailure_; // not told yet: the drives are being looked up
    bool isDriveMissed_ = false;          // which was told: they are looked up again and again
    QElapsedTimer operationTime_;
    QTimer ticks_;        // while something runs
    QTimer driveRelease_; // after the last command
    QTimer driveWatch_;   // while no drive can be had, as was told
    LiveSource source_;   // the first to go: its frames may still go to the library's callbacks
};

} // namespace tesmor::apps
