// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/demo_session.h"

#include "host/focus_units.h"
#include "host/fusion_job.h"
#include "host/fusion_memory.h"
#include "host/pending_result.h"
#include "images/frame_image.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"
#include "terminal/progress_bar.h"
#include "terminal/text.h"
#include "tesmor.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <thread>
#include <type_traits>

namespace tesmor::apps {

namespace {

using namespace std::chrono_literals;

constexpr auto FIRST_FRAME_LIMIT = 10s;
constexpr auto TIME_BETWEEN_LINES = 1s;
constexpr std::int64_t LONGEST_MOVE = 60000; // steps; a manual move wraps around at 65536
constexpr int BAR_LENGTH = 20;

void requireSuccess(std::int32_t result, const QString& operation)
{
    switch (result) {
    case TESMOR_SUCCESS:
    case TESMOR_STACK_DONE:
        return;
    case TESMOR_ABORTED:
        throw Interrupted();
    case TESMOR_NO_DRIVE:
        throw UserError(operation + ": the simulated focus drive was not found; close other programs and try again");
    case TESMOR_NO_FRAME:
        throw UserError(operation +
                        ": no frame arrived within 4 seconds; close other programs, or use smaller photographs");
    default:
        throw UserError(operation + ": the simulated focus motor does not respond; close other programs and try again");
    }
}

void finish(void* context, std::int32_t result)
{
    static_cast<PendingResult*>(context)->set(result);
}

// The slices received so far.
struct StackReports {
    PendingResult result;
    std::mutex mutex;
    std::vector<QImage> slices;

    std::size_t count()
    {
        const std::lock_guard lock(mutex);
        return slices.size();
    }

    static void receive(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context,
                        std::int32_t result)
    {
        auto& reports = *static_cast<StackReports*>(context);
        if (image == nullptr)
            return reports.result.set(result);
        QImage slice =
            copyOfFrame(image, width, height); // null if memory is short; a callback of the library should not throw
        const std::lock_guard lock(reports.mutex);
        reports.slices.push_back(std::move(slice));
    }
};

} // namespace

DemoSession::DemoSession(microscope::VirtualMicroscope& microscope, LiveLine::Style style)
    : microscope_(microscope), style_(style), magnification_(microscope.settings().magnification),
      watch_(magnification_)
{
    try {
        microscope_.start([this](const microscope::Frame& frame) { watch_.receive(frame); });
    } catch (const std::system_error& error) {
        throw UserError(
            QString("the simulated focus drive cannot be opened (%1); stop whatever else simulates a drive, "
                    "such as a second demo")
                .arg(error.what()));
    }
    const auto limit = Clock::now() + FIRST_FRAME_LIMIT;
    while (watch_.count() == 0 && Clock::now() < limit)
        std::this_thread::sleep_for(5ms);
    if (watch_.count() == 0) {
        microscope_.stop();
        throw UserError("the simulated camera delivers no frames; close other programs, or use smaller photographs");
    }
}

DemoSession::~DemoSession()
{
    microscope_.stop();
}

template <class Operation>
auto DemoSession::measured(const QString& name, Operation operation)
{
    const std::size_t moves = moveCount();
    const std::size_t frames = watch_.count();
    const auto start = Clock::now();
    auto result = operation();
    throwIfInterrupted();
    const std::chrono::duration<double> time = Clock::now() - start;
    costs_.push_back({name, moveCount() - moves, watch_.count() - frames, time.count()});
    return result;
}

FocusTrace DemoSession::focus()
{
    return measured("autofocus", [&] {
        const InterruptGuard guard;
        const std::int64_t start = microscope_.position();
        const std::size_t firstRequest = microscope_.requestLog().size();
        const auto requests = [&] {
            auto log = microscope_.requestLog();
            log.erase(log.begin(), log.begin() + static_cast<std::ptrdiff_t>(firstRequest));
            return log;
        };
        LiveLine line(style_, TIME_BETWEEN_LINES);
        double highest = 1e-9; // grey levels; above 0 for a black view
        PendingResult result;
        tesmor_start(magnification_, finish, &result);
        const std::int32_t code = result.wait([&] {
            const FocusTrace trace = traceSearch(requests(), {}, start, false);
            const double contrast = watch_.last()->contrast;
            highest = std::max(highest, contrast);
            if (!trace.empty())
                line.show(QString("Focusing: %1, move %2, %3 %4")
                              .arg(phaseName(trace.back().phase))
                              .arg(trace.size())
                              .arg(viewText(), barText(contrast / highest, BAR_LENGTH)));
        });
        requireSuccess(code, "autofocus");
        return traceSearch(requests(), watch_.frames(), start, true);
    });
}

void DemoSession::moveTo(std::int64_t position)
{
    measured("move to the stack", [&] {
        const InterruptGuard guard;
        LiveLine line(style_, TIME_BETWEEN_LINES);
        while (const std::int64_t way = position - microscope_.position()) {
            const std::int64_t before = microscope_.position();
            moveBy(std::clamp(way, -LONGEST_MOVE, LONGEST_MOVE), line);
            if (microscope_.position() == before)
                throw UserError("manual move: the simulated focus motor is at its end stop; choose a smaller --offset");
        }
        return true;
    });
}

void DemoSession::moveBy(std::int64_t steps, LiveLine& line)
{
    // The library truncates to whole steps; half a step more protects against rounding.
    const double angle = (static_cast<double>(steps) + std::copysign(0.5, steps)) * DEGREES_PER_STEP;
    PendingResult result;
    tesmor_manual(angle, finish, &result);
    const std::int32_t code = result.wait([&] { line.show("Moving: " + viewText()); });
    requireSuccess(code, "manual move");
}

std::vector<QImage> DemoSession::captureStack(std::uint16_t slices, std::int32_t spacing)
{
    return measured("stack", [&] {
        const InterruptGuard guard;
        LiveLine line(style_, TIME_BETWEEN_LINES);
        StackReports reports;
        tesmor_startif(magnification_, slices, spacing, StackReports::receive, &reports, 0);
        const std::int32_t code = reports.result.wait([&] {
            const std::size_t count = reports.count();
            const QString what =
                count < slices ? QString("slice %1 of %2").arg(count + 1).arg(slices) : QString("moving back");
            const double share = static_cast<double>(count) / slices;
            line.show(QString("Capturing: %1, %2 %3").arg(what, viewText(), barText(share, BAR_LENGTH)));
        });
        requireSuccess(code, "stack");
        if (std::ranges::any_of(reports.slices, &QImage::isNull))
            throw std::bad_alloc();
        return std::move(reports.slices);
    });
}

QImage DemoSession::merge(const std::vector<QImage>& slices)
{
    microscope_.stop(); // nobody watches the live view now, and the fusion yields to everything else
    return measured("fusion", [&] {
        QImage fused(slices.front().size(), QImage::Format_BGR888);
        if (fused.isNull())
            throw std::bad_alloc();
        ProgressBar bar("Merging", style_);
        const std::int32_t code = mergeImages(slices, fused, [&](int percent) { bar.show(percent); });
        if (code == TESMOR_NO_MEMORY)
            throw fusionMemoryError(fusionMemory(fused.size(), slices.size()));
        requireSuccess(code, "fusion");
        return fused;
    });
}

std::size_t DemoSession::moveCount() const
{
    const auto log = microscope_.requestLog();
    return static_cast<std::size_t>(
        std::ranges::count_if(log, [](const auto& request) { return displacementOf(request).has_value(); }));
}

QString DemoSession::viewText() const
{
    return QString("position %1, contrast %2").arg(microscope_.position(), 7).arg(watch_.last()->contrast, 5, 'f', 2);
}

} // namespace tesmor::apps
