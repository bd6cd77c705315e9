// SPDX-License-Identifier: GPL-2.0-or-later
// What the live image can come from.
#pragma once

#include "cameras/device.h"
#include "microscope/virtual_microscope.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tesmor::apps {

// A source that is about to be opened.
struct Instrument {
    cameras::DeviceMaker makeDevice;
    std::shared_ptr<microscope::VirtualMicroscope> microscope; // behind it; null for a real camera
};

struct Source {
    QString name;  // as the command line and the settings have it
    QString title; // for people
    bool isSimulated = false;
    std::function<Instrument(std::uint16_t magnification)> make; // may take seconds; throws CameraError
};

// May take seconds.
using SourceFinder = std::function<std::vector<Source>()>;

// The simulated microscope, with its drive.
Source virtualSource();

// Whatever cameras::openDevice takes.
Source cameraSource(const QString& name, const QString& title);

// The cameras that answer, and the virtual microscope last.
std::vector<Source> findSources();

} // namespace tesmor::apps
