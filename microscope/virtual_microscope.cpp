// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/virtual_microscope.h"

#include "drive_service/drive_service.h"
#include "microscope/camera/best_focus.h"
#include "microscope/camera/camera.h"
#include "microscope/camera/optics.h"
#include "microscope/camera/photo_scene.h"
#include "microscope/camera/sensor.h"
#include "microscope/drive/acknowledgement_gate.h"
#include "microscope/drive/drive_controller.h"
#include "microscope/drive/motor.h"
#include "microscope/specimen/random.h"

#include <cmath>
#include <optional>
#include <utility>

namespace tesmor::microscope {

namespace {

// Seeds that differ, of things that are to differ.
enum : std::uint64_t { SPECIMEN_SEED = 1, NOISE_SEED, MOTION_SEED };

std::uint64_t seedOf(const Settings& settings, std::uint64_t thing)
{
    return scramble(settings.seed * 3 + thing);
}

// As an ideal sensor would take it.
Image sharpFrame(const Picture& sharp, const Warp& warp)
{
    const Sensor ideal(0, 0);
    Image image(sharp.width, sharp.height);
    std::vector<std::uint16_t> pixels(3 * static_cast<std::size_t>(sharp.width));
    for (std::int32_t row = 0; row < sharp.height; ++row) {
        showRow(sharp, warp, row, pixels);
        ideal.expose(pixels, 0, row, image.pixels.data() + rowBytes(image.width) * static_cast<std::size_t>(row));
    }
    return image;
}

// What of the picture's values, one a pixel, lies in the frame.
std::vector<float> middleOf(const std::vector<float>& values, const Picture& picture)
{
    std::vector<float> middle;
    for (std::int32_t row = 0; row < picture.height; ++row) {
        const auto first = values.begin() + picture.margin +
                           static_cast<std::ptrdiff_t>(row + picture.margin) * (picture.width + 2 * picture.margin);
        middle.insert(middle.end(), first, first + picture.width);
    }
    return middle;
}

} // namespace

struct VirtualMicroscope::Parts {
    explicit Parts(Settings given)
        : settings(checkedSettings(std::move(given))), objective(*findObjective(settings.magnification)),
          scene(makeScene()),
          motor(settings.motor, TimeScale{settings.timeScale}, std::llround(best) + settings.startOffset),
          sensor(seedOf(settings, NOISE_SEED), settings.photos ? 0 : settings.noise), controller(motor, gate),
          camera({settings.framesPerSecond,
                  TimeScale{settings.timeScale},
                  {settings.motion, seedOf(settings, MOTION_SEED), best, objective.depthOfFieldSteps()}},
                 *scene, sensor, motor, gate)
    {
        controller.setFaults(settings.faults);
    }

    // Fills in optics, best, truth and heightMap too.
    std::unique_ptr<Scene> makeScene()
    {
        if (settings.photos) {
            auto photos = std::make_unique<PhotoScene>(std::move(*settings.photos));
            best = findBestPlane(*photos, settings.magnification);
            return photos;
        }
        const std::int32_t margin = marginFor(settings.motion, settings.width, settings.height);
        auto made = std::make_unique<Optics>(
            makeSpecimen({seedOf(settings, SPECIMEN_SEED), settings.magnification, objective.depthOfFieldSteps(),
                          settings.width, settings.height, margin}),
            objective);
        best = findBestFocus(*made, objective);
        truth = sharpFrame(made->sharp(), Warp{});
        heightMap = middleOf(made->heightMap(), made->sharp());
        optics = made.get();
        return made;
    }

    Settings settings;
    const Objective objective;
    const Optics* optics = nullptr; // the scene, unless that is photographs
    double best = 0;
    Image truth;
    std::vector<float> heightMap;
    const std::unique_ptr<Scene> scene;
    Motor motor;
    AcknowledgementGate gate;
    const Sensor sensor;
    DriveController controller;
    std::optional<service::DriveService> service; // while started
    Camera camera;
    bool started = false;
};

VirtualMicroscope::VirtualMicroscope(Settings settings) : parts_(std::make_unique<Parts>(std::move(settings))) {}

VirtualMicroscope::~VirtualMicroscope()
{
    stop();
}

void VirtualMicroscope::start(FrameSink sink)
{
    if (parts_->started)
        return;
    parts_->controller.clearLog();
    parts_->controller.reappear();
    parts_->service.emplace(parts_->controller, parts_->settings.unit);
    parts_->camera.start(std::move(sink));
    parts_->started = true;
}

void VirtualMicroscope::stop() noexcept
{
    parts_->service.reset();
    parts_->camera.stop();
    parts_->started = false;
}

void VirtualMicroscope::deliverFrame()
{
    parts_->camera.deliverFrame();
}

std::int64_t VirtualMicroscope::position() const
{
    return parts_->motor.position(Clock::now());
}

void VirtualMicroscope::setPosition(std::int64_t position)
{
    parts_->motor.place(position);
}

bool VirtualMicroscope::isMoving() const
{
    return parts_->motor.isMoving(Clock::now());
}

double VirtualMicroscope::bestFocus() const
{
    return parts_->best;
}

double VirtualMicroscope::depthOfField() const
{
    return parts_->objective.depthOfFieldSteps();
}

const Image& VirtualMicroscope::truth() const
{
    return parts_->truth;
}

Image VirtualMicroscope::truth(const Warp& warp) const
{
    return parts_->optics ? sharpFrame(parts_->optics->sharp(), warp) : Image();
}

const std::vector<float>& VirtualMicroscope::heightMap() const
{
    return parts_->heightMap;
}

void VirtualMicroscope::setFaults(const Faults& faults)
{
    parts_->controller.setFaults(faults);
}

std::vector<LoggedRequest> VirtualMicroscope::requestLog() const
{
    return parts_->controller.log();
}

bool VirtualMicroscope::driveHasVanished() const
{
    return parts_->controller.hasVanished();
}

std::string VirtualMicroscope::description() const
{
    const Settings& settings = parts_->settings;
    std::string text = "Virtual microscope (simulated, no real camera or motor): objective " +
                       std::to_string(settings.magnification) + "x, depth of field " +
                       std::to_string(std::lround(depthOfField())) + " motor steps, ";
    if (settings.photos)
        return text + "replayed photographs";
    return text + "specimen " + std::to_string(settings.seed);
}

const Settings& VirtualMicroscope::settings() const
{
    return parts_->settings;
}

} // namespace tesmor::microscope
