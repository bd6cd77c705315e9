// SPDX-License-Identifier: GPL-2.0-or-later
// A simulated microscope: a focus motor, a specimen seen through an objective, a camera, and the focus drive's service
// to which the library connects as it would to a real camera's. Nothing in it is real; `description` says so.
//
// How it works
//   The constructor makes the specimen and its optics: about a second and 150 MB at 1280 x 960. `start` opens the drive
//   on its unit and lets the camera deliver frames to the sink; the host passes them on to tesmor_video. Moves that the
//   library sends turn the motor, and the frames show it. A frame that is delivered after a move was acknowledged was
//   taken after it: one that was exposed earlier is thrown away and taken anew.
//
// Focus positions
//   Motor steps, positive forward. 12800 steps are one turn of the motor and 25 micrometres.
//
// Repeatability
//   The same settings give the same specimen, and the same frame, to the byte, for the same position and frame number,
//   on every system.
//
// Motion
//   With settings.motion the picture breathes with the focus and drifts; each frame tells its exact warp. For a
//   drifting stack set framesPerSecond and timeScale to 0, then setPosition and deliverFrame for each slice.
//   truth(warp) is what merging should give when all slices were laid over the one with that warp.
//
// Threads
//   start, stop and deliverFrame are called from one thread at a time, never from the sink. All other functions may be
//   called from any thread at any time, the sink included. The sink runs on the camera's thread, or within
//   deliverFrame.
#pragma once

#include "microscope/camera/image.h"
#include "microscope/drive/request_log.h"
#include "microscope/settings.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tesmor::microscope {

class VirtualMicroscope {
public:
    // Throws std::invalid_argument when a setting is outside its range.
    explicit VirtualMicroscope(Settings settings);

    // Stops.
    ~VirtualMicroscope();

    VirtualMicroscope(const VirtualMicroscope&) = delete;
    VirtualMicroscope& operator=(const VirtualMicroscope&) = delete;

    // Opens the drive and starts the camera; clears the request log. `sink` may be empty. Does nothing when started.
    // Throws std::system_error when the unit is taken by another process or the system fails.
    void start(FrameSink sink);

    // Cuts the drive's link, then ends the camera: no call of the sink is under way or will come. Does not block longer
    // than a frame takes.
    void stop() noexcept;

    // Exposes one frame now and hands it to the sink, on the calling thread, while started. For tests and benchmarks.
    void deliverFrame();

    std::int64_t position() const;           // of the focus now, in mid-move too
    void setPosition(std::int64_t position); // at once, as by hand; a move under way ends there
    bool isMoving() const;

    // The truth.

    // Motor steps. The position whose frame comes closest to the sharp image, in the central part of the field that the
    // library's autofocus looks at with this magnification. With photographs it is no truth, but the plane of greatest
    // contrast there.
    double bestFocus() const;

    double depthOfField() const; // of the objective, motor steps, in all (half of it on either side)

    // Sharp everywhere, without noise; empty with photographs. Still, and as a frame with that warp shows it.
    const Image& truth() const;
    Image truth(const Warp& warp) const;

    // For each pixel, row by row, the position where it is in focus; empty with photographs.
    const std::vector<float>& heightMap() const;

    // The drive.

    void setFaults(const Faults& faults);
    std::vector<LoggedRequest> requestLog() const; // the newest 10,000
    bool driveHasVanished() const;

    // One line for people: that the microscope is simulated, with its objective and specimen.
    std::string description() const;
    const Settings&
    settings() const; // as given, but for the pixels of photographs; width and height are those of the frames

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tesmor::microscope
