// A simulated microscope: a focus motor, a specimen seen through an objective, a camera, and the focus drive's service
// to which the library connects as it would to a real camera's. Nothing in it is real; `description` says so.
//
// How it works
//   The constructor makes the specimen and its optics, which takes about a second at 1280 x 960. `start` opens the drive
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
// Threads
//   start, stop and deliverFrame are called from one thread at a time, never from the sink. All other functions may be
//   called from any thread at any time, the sink included. The sink runs on the camera's thread, or within deliverFrame.
#pragma once

#include "microscope/faults.h"
#include "microscope/image.h"
#include "microscope/motor_settings.h"
#include "microscope/photo_planes.h"
#include "microscope/request_log.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tesmor::microscope {

struct Settings {
    std::uint64_t seed = 1;           // of the specimen, the noise and the dropped frames
    std::uint16_t magnification = 10; // of the objective: 4, 10, 20, 40, 60, 80 or 100
    std::int32_t width = 1280;        // of a frame, pixels, at least 64; the field of view is the same at any width
    std::int32_t height = 960;        // likewise
    std::int64_t startOffset = 0;     // where the motor stands at first: motor steps forward of the best focus
    unsigned unit = 0;                // of the drive, 0 to 15; the library takes the lowest unit that answers

    double framesPerSecond = 30; // 0: no camera thread, frames come from deliverFrame alone
    double noise = 1.5;          // grey levels, standard deviation at full brightness; 0: none
    double droppedFrames = 0;    // share of the frames that the camera loses, 0 to 1
    double timeScale = 1;        // motor and camera run this many times faster than real; 0: they take no time at
                                 // all, and the camera delivers frames as fast as it can
    MotorSettings motor;
    Faults faults;                     // at first
    std::optional<PhotoPlanes> photos; // instead of the specimen; they set the frame's size
};

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

    // The frame that the camera would see at a position, without noise. Any thread.
    Image view(std::int64_t position) const;

    std::int64_t position() const;           // of the focus now, in mid-move too
    void setPosition(std::int64_t position); // at once, as by hand; a move under way ends there
    bool isMoving() const;

    // The truth.

    // Motor steps. The position whose view comes closest to the sharp image, in the central part of the field that the
    // library's autofocus looks at with this magnification. With photographs it is no truth, but the plane of greatest
    // contrast there.
    double bestFocus() const;

    double depthOfField() const;                 // of the objective, motor steps, in all (half of it on either side)
    bool hasTruth() const;                       // false with photographs: the next two are then empty
    const Image& truth() const;                  // sharp everywhere, without noise
    const std::vector<float>& heightMap() const; // for each pixel, row by row, the position where it is in focus

    // The drive.

    Faults faults() const; // what is left of them
    void setFaults(const Faults& faults);
    std::vector<LoggedRequest> requestLog() const; // the newest 10,000
    bool driveHasVanished() const;

    // One line for people: that the microscope is simulated, with its objective and specimen.
    std::string description() const;
    const Settings& settings() const; // as given; width and height those of the frames

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tesmor::microscope
