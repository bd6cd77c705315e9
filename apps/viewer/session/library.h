// SPDX-License-Identifier: GPL-2.0-or-later
// The library as a window uses it: no function of this class blocks. Commands are posted on a thread of their own,
// and their results arrive as signals on the thread of this object.
//
// One command at a time: after one of focus, move, captureStack and fuse, the next may follow when `ended` has come.
// stop may be called at any time.
#pragma once

#include "host/drive_units.h"
#include "viewer/session/command_thread.h"

#include <QImage>
#include <QObject>

#include <atomic>
#include <cstdint>
#include <list>
#include <vector>

namespace tesmor::apps {

class Library : public QObject {
    Q_OBJECT

public:
    // Throws UserError when the worker cannot be started.
    Library();

    // Shuts down and waits for it.
    ~Library() override;

    // Commands. Each ends with one `ended`.
    void focus(std::uint16_t magnification);
    void move(int steps); // at most LARGEST_MOVE either way
    void captureStack(std::uint16_t magnification, std::uint16_t slices, std::int32_t spacing);
    void fuse(std::vector<QImage> images); // as copyOfFrame makes them, all of one size

    // Ends the running command as soon as it can be ended; `ended` tells of it.
    void stop();

    // Lets go of the drive that a manual move holds.
    void releaseDrive();

    // Lets go of the drive, too, and looks up all drives of the computer; `drivesFound` follows.
    void findDrives();

    // Ends the running command and the library's worker; `isShutDown` follows. Nothing may be called after that.
    void shutDown();

    // Percent, of the running fusion.
    int fusionProgress() const
    {
        return fusionProgress_;
    }

signals:
    // `fused` is null unless a fusion succeeded.
    void ended(int result, const QImage& fused);

    // A slice of the running stack; null when there was no memory for it.
    void sliceCaptured(const QImage& slice);

    void drivesFound(const std::vector<tesmor::apps::DriveUnit>& units);

    void isShutDown();

private:
    // What the callbacks of one command get as their context.
    struct Run {
        Library& library;
        std::vector<QImage> images;
        QImage output;
    };

    Run& newRun();
    void post(std::function<void()> job);
    void end(std::int32_t result, const QImage& fused = {});

    // On threads of the library or the camera.
    static void finish(void* context, std::int32_t result);
    static void receiveSlice(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context,
                             std::int32_t result);
    static void receiveFusion(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context,
                              std::int32_t result);

    std::atomic<int> fusionProgress_ = 0;
    std::list<Run> runs_; // the newest; a frame on its way to an aborted stack may still use an older one
    bool shutDown_ = false;
    CommandThread commandThread_; // the first to go
};

} // namespace tesmor::apps
