// SPDX-License-Identifier: GPL-2.0-or-later
// A camera whose frames go to the library.
#pragma once

#include "cameras/camera.h"
#include "tesmor/camera/camera_options.h"

#include <QSize>
#include <QString>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>

namespace tesmor::apps {

// Within a LibrarySession.
class LiveCamera {
public:
    //   magnification   of the virtual microscope's objective
    // Opens and starts the camera; returns with its first frame. Says on the standard error which camera it is, unless
    // --camera tells. Throws UserError and Interrupted.
    LiveCamera(const CameraOptions& options, std::uint16_t magnification);
    ~LiveCamera();
    LiveCamera(const LiveCamera&) = delete;
    LiveCamera& operator=(const LiveCamera&) = delete;

    const QString& name() const
    {
        return name_;
    }

    QSize frameSize() const; // of the newest frame

    std::uint64_t frameCount() const
    {
        return frameCount_;
    }

    // Why no frame will come any more; none as long as they may.
    std::optional<QString> whyLost() const;

private:
    void setControls(const CameraOptions& options);
    void awaitFirstFrame();
    void receive(const cameras::Frame& frame);

    const QString name_;
    std::atomic<std::uint64_t> frameCount_{0};
    mutable std::mutex mutex_; // guards what follows
    QSize frameSize_;
    std::optional<QString> whyLost_;
    std::optional<cameras::Camera> camera_; // the first to go
};

} // namespace tesmor::apps
