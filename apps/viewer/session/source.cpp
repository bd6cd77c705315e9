// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/source.h"

#include "cameras/camera_list.h"
#include "cameras/virtual/virtual_device.h"

#include <QCoreApplication>

#include <cmath>
#include <utility>

namespace tesmor::apps {

namespace {

constexpr double START = -2.5; // depths of field from the best focus

Instrument makeVirtualMicroscope(std::uint16_t magnification)
{
    microscope::Settings settings;
    settings.magnification = magnification;
    const double framesPerSecond = std::exchange(settings.framesPerSecond, 0); // the device exposes them
    auto microscope = std::make_shared<microscope::VirtualMicroscope>(settings);
    microscope->setPosition(std::llround(microscope->bestFocus() + START * microscope->depthOfField()));
    return {
        [microscope, framesPerSecond] { return std::make_unique<cameras::VirtualDevice>(microscope, framesPerSecond); },
        microscope};
}

} // namespace

Source virtualSource()
{
    return {"virtual", QCoreApplication::translate("Source", "Virtual microscope (simulated)"), true,
            makeVirtualMicroscope};
}

Source cameraSource(const QString& name, const QString& title)
{
    if (name == "virtual")
        return virtualSource();
    return {name, title, false, [name = name.toStdString()](std::uint16_t) {
                return Instrument{[name] { return cameras::openDevice(name); }, nullptr};
            }};
}

std::vector<Source> findSources()
{
    std::vector<Source> sources;
    for (const cameras::CameraInfo& info : cameras::listCameras())
        sources.push_back(cameraSource(QString::fromStdString(info.name), QString::fromStdString(info.description)));
    sources.push_back(virtualSource());
    return sources;
}

} // namespace tesmor::apps
