// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/camera/live_camera.h"

#include "cameras/camera_list.h"
#include "cameras/virtual/virtual_device.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"
#include "tesmor.h"

#include <QStringList>

#include <chrono>
#include <cstdio>
#include <thread>
#include <utility>

namespace tesmor::apps {

namespace {

using namespace std::chrono_literals;
using cameras::Clock;

constexpr auto FIRST_FRAME_LIMIT = 10s;
constexpr auto TICK = 5ms;
constexpr int VIRTUAL_OFFSET = -1000; // motor steps from the best focus

QString onlyCamera()
{
    const auto all = cameras::listCameras();
    if (all.empty())
        throw UserError("no camera found; connect one, or try --camera virtual");
    QStringList names;
    for (const auto& camera : all)
        names.append(QString::fromStdString(camera.name));
    if (names.size() > 1)
        throw UserError("several cameras found; choose one with --camera: " + names.join(", "));
    std::fprintf(stderr, "The camera is %s.\n", all.front().description.c_str());
    return names.first();
}

// The microscope is made here, where it may take as long as it likes: it is no sign of a camera that hangs.
cameras::DeviceMaker virtualMaker(std::uint16_t magnification)
{
    microscope::Settings settings;
    settings.width = 640;
    settings.height = 480;
    settings.magnification = magnification;
    settings.startOffset = VIRTUAL_OFFSET;
    const double framesPerSecond = std::exchange(settings.framesPerSecond, 0);
    auto microscope = std::make_shared<microscope::VirtualMicroscope>(settings);
    return
        [microscope, framesPerSecond] { return std::make_unique<cameras::VirtualDevice>(microscope, framesPerSecond); };
}

cameras::DeviceMaker makerOf(const QString& name, std::uint16_t magnification)
{
    if (name == "virtual")
        return virtualMaker(magnification);
    return [name = name.toStdString()] { return cameras::openDevice(name); };
}

} // namespace

LiveCamera::LiveCamera(const CameraOptions& options, std::uint16_t magnification)
    : name_(options.camera ? *options.camera : onlyCamera())
{
    try {
        camera_.emplace(makerOf(name_, magnification));
    } catch (const cameras::CameraError& error) {
        throw UserError(name_ + ": " + error.what());
    }
    setControls(options);
    camera_->start([this](const cameras::Frame& frame) { receive(frame); },
                   [this](cameras::CameraEvent event, const std::string& text) {
                       const std::lock_guard lock(mutex_);
                       if (event == cameras::CameraEvent::LOST)
                           whyLost_ = QString::fromStdString(text);
                   });
    awaitFirstFrame();
}

LiveCamera::~LiveCamera()
{
    camera_.reset();
}

void LiveCamera::setControls(const CameraOptions& options)
{
    const auto set = [this](cameras::Control control, const std::optional<double>& value, const QString& option) {
        if (!value)
            return;
        const auto state = camera_->control(control);
        if (!state)
            throw UserError(QString("%1: the camera has no such setting; leave %2 out").arg(name_, option));
        camera_->setControl(control, *value);
    };
    set(cameras::Control::EXPOSURE, options.exposure, "--exposure");
    set(cameras::Control::GAIN, options.gain, "--gain");
}

void LiveCamera::awaitFirstFrame()
{
    const InterruptGuard guard;
    const auto limit = Clock::now() + FIRST_FRAME_LIMIT;
    while (frameCount_ == 0) {
        throwIfInterrupted();
        if (const auto reason = whyLost())
            throw UserError(name_ + ": " + *reason);
        if (Clock::now() > limit)
            throw UserError(name_ +
                            ": the camera is not sending images; check its cable, and its trigger if it has one");
        std::this_thread::sleep_for(TICK);
    }
}

void LiveCamera::receive(const cameras::Frame& frame)
{
    {
        const std::lock_guard lock(mutex_);
        frameSize_ = {frame.width, frame.height};
    }
    ++frameCount_;
    tesmor_video(frame.pixels, frame.width, frame.height);
}

QSize LiveCamera::frameSize() const
{
    const std::lock_guard lock(mutex_);
    return frameSize_;
}

std::optional<QString> LiveCamera::whyLost() const
{
    const std::lock_guard lock(mutex_);
    return whyLost_;
}

} // namespace tesmor::apps
