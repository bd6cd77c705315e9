// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/library.h"

#include "host/focus_units.h"
#include "host/planning_cache.h"
#include "images/frame_image.h"
#include "terminal/errors.h"
#include "tesmor.h"

#include <cmath>
#include <utility>

namespace tesmor::apps {

namespace {

constexpr std::size_t MOST_RUNS = 16;

} // namespace

Library::Library()
{
    if (tesmor_init() == 0)
        throw UserError("could not start a thread; close other programs");
}

Library::~Library()
{
    shutDown();
}

void Library::focus(std::uint16_t magnification)
{
    post([run = &newRun(), magnification] { tesmor_start(magnification, finish, run); });
}

void Library::move(int steps)
{
    // The library truncates to whole steps; half a step more protects against rounding.
    const double angle = (steps + std::copysign(0.5, steps)) * DEGREES_PER_STEP;
    post([run = &newRun(), angle] { tesmor_manual(angle, finish, run); });
}

void Library::captureStack(std::uint16_t magnification, std::uint16_t slices, std::int32_t spacing)
{
    post([=, run = &newRun()] { tesmor_startif(magnification, slices, spacing, receiveSlice, run, 0); });
}

void Library::fuse(std::vector<QImage> images)
{
    Run& run = newRun();
    run.images = std::move(images);
    fusionProgress_ = 0;
    post([this, &run] {
        const QSize size = run.images.front().size();
        run.output = QImage(size, QImage::Format_BGR888);
        if (run.output.isNull())
            return end(TESMOR_NO_MEMORY);
        std::vector<const std::uint8_t*> frames;
        for (const QImage& image : run.images)
            frames.push_back(image.constBits());
        loadPlanning();
        tesmor_fusion(frames.data(), frames.size(), static_cast<std::uint32_t>(size.width()),
                      static_cast<std::uint32_t>(size.height()), run.output.bits(), receiveFusion, &run);
    });
}

void Library::stop()
{
    post([] { tesmor_cancelif(); });
}

void Library::releaseDrive()
{
    post([] { tesmor_reset(); });
}

void Library::findDrives()
{
    post([this] {
        tesmor_reset();
        QMetaObject::invokeMethod(
            this, [this, units = findDriveUnits()] { emit drivesFound(units); }, Qt::QueuedConnection);
    });
}

void Library::shutDown()
{
    if (std::exchange(shutDown_, true))
        return;
    commandThread_.post([this] {
        tesmor_fini();
        QMetaObject::invokeMethod(this, &Library::isShutDown, Qt::QueuedConnection);
    });
}

Library::Run& Library::newRun()
{
    if (runs_.size() == MOST_RUNS)
        runs_.pop_front();
    runs_.push_back({*this, {}, {}}); // not emplaced: clang 14 makes no aggregate of parentheses
    return runs_.back();
}

void Library::post(std::function<void()> job)
{
    if (!shutDown_)
        commandThread_.post(std::move(job));
}

void Library::end(std::int32_t result, const QImage& fused)
{
    QMetaObject::invokeMethod(
        this, [this, result, fused] { emit ended(result, fused); }, Qt::QueuedConnection);
}

void Library::finish(void* context, std::int32_t result)
{
    static_cast<Run*>(context)->library.end(result);
}

void Library::receiveSlice(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context,
                           std::int32_t result)
{
    Library& library = static_cast<Run*>(context)->library;
    if (image == nullptr)
        return library.end(result);
    QMetaObject::invokeMethod(
        &library, [&library, slice = copyOfFrame(image, width, height)] { emit library.sliceCaptured(slice); },
        Qt::QueuedConnection);
}

void Library::receiveFusion(const std::uint8_t* image, std::int32_t, std::int32_t, void* context, std::int32_t result)
{
    Run& run = *static_cast<Run*>(context);
    if (image == nullptr) {
        run.library.fusionProgress_ = result;
        return;
    }
    run.library.commandThread_.post(savePlanning);
    run.library.end(result, result == TESMOR_SUCCESS ? run.output : QImage());
    run.output = QImage();
    run.images.clear();
}

} // namespace tesmor::apps
