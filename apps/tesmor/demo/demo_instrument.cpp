// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/demo_instrument.h"

#include "images/frame_image.h"
#include "terminal/text.h"
#include "tesmor/demo/plane_folder.h"
#include "tesmor/demo/stack_plan.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tesmor::apps {

namespace {

constexpr double DEFAULT_OFFSET = 3; // depths of field

microscope::Settings settingsFor(const DemoOptions& options, LiveLine::Style style)
{
    microscope::Settings settings;
    settings.seed = options.seed;
    settings.magnification = options.magnification;
    settings.width = options.size.width();
    settings.height = options.size.height();
    if (options.planes) {
        const auto distance = static_cast<double>(stepsPerPlane(options.magnification));
        settings.photos = microscope::PhotoPlanes{readPlanes(*options.planes, style), distance};
    }
    return settings;
}

std::size_t countPlanes(const microscope::Settings& settings)
{
    return settings.photos ? settings.photos->images.size() : 0;
}

// Motor steps from the best focus. Photographs show nothing new outside their planes, so the start lies among them, on
// the longer side of the best one.
double defaultOffset(const microscope::VirtualMicroscope& microscope, std::size_t planeCount)
{
    const double offset = -DEFAULT_OFFSET * microscope.depthOfField();
    if (planeCount == 0)
        return offset;
    const auto last =
        static_cast<double>(stepsPerPlane(microscope.settings().magnification)) * static_cast<double>(planeCount - 1);
    const double below = microscope.bestFocus();
    const double above = last - below;
    return below >= above ? std::max(-below, offset) : std::min(above, -offset);
}

} // namespace

DemoInstrument::DemoInstrument(const DemoOptions& options, LiveLine::Style style)
    : DemoInstrument(options, settingsFor(options, style))
{
}

DemoInstrument::DemoInstrument(const DemoOptions& options, microscope::Settings settings)
    : planeCount_(countPlanes(settings)), microscope_(std::move(settings))
{
    const double offset = options.offset ? *options.offset : defaultOffset(microscope_, planeCount_);
    startPosition_ = std::llround(microscope_.bestFocus() + offset);
    microscope_.setPosition(startPosition_);
}

double DemoInstrument::unitOfDistance() const
{
    return planeCount_ > 0 ? static_cast<double>(stepsPerPlane(microscope_.settings().magnification))
                           : microscope_.depthOfField();
}

QImage DemoInstrument::truth() const
{
    const microscope::Image& truth = microscope_.truth();
    return truth.pixels.empty() ? QImage() : copyOfFrame(truth.pixels.data(), truth.width, truth.height);
}

QString DemoInstrument::introduction(const DemoOptions& options) const
{
    QString text = QString::fromStdString(microscope_.description()) + "\n";
    if (planeCount_ > 0)
        text += QString("%1 photographs from %2 replace the specimen, %3 motor steps apart.\n")
                    .arg(planeCount_)
                    .arg(*options.planes)
                    .arg(std::lround(unitOfDistance()));
    text += QString("It runs in real time: %1 frames per second of %2 pixels.\n")
                .arg(microscope_.settings().framesPerSecond)
                .arg(sizeText({microscope_.settings().width, microscope_.settings().height}));
    const double offset = static_cast<double>(startPosition_) - microscope_.bestFocus();
    return text +
           QString("It starts out of focus, at position %1: %2 motor steps (%3 %4) from the %5, on the %6 side.\n")
               .arg(startPosition_)
               .arg(std::lround(std::abs(offset)))
               .arg(std::abs(offset) / unitOfDistance(), 0, 'f', 1)
               .arg(planeCount_ > 0 ? "planes" : "depths of field",
                    planeCount_ > 0 ? "plane of highest contrast" : "best focus", offset < 0 ? "reverse" : "forward");
}

} // namespace tesmor::apps
