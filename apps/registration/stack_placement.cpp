// SPDX-License-Identifier: GPL-2.0-or-later
#include "registration/stack_placement.h"

#include "images/image_quality.h"
#include "registration/frame_registration.h"

#include <QThread>
#include <QThreadPool>
#include <QtConcurrent>

#include <algorithm>
#include <cmath>
#include <exception>
#include <functional>
#include <numeric>

namespace tesmor::apps {

namespace {

constexpr int MOST_THREADS = 4; // each takes memory

template <class Result>
struct Outcome {
    Result result;
    std::exception_ptr failure;
};

// function(0), function(1), ... on several threads; `each` gets the results in order on this one.
template <class Result, class Function, class Each>
void forEachIndex(std::size_t count, const Function& function, const Each& each)
{
    std::vector<std::size_t> indices(count);
    std::iota(indices.begin(), indices.end(), 0);
    QThreadPool pool;
    pool.setMaxThreadCount(std::min(QThread::idealThreadCount(), MOST_THREADS));
    QFuture<Outcome<Result>> outcomes =
        QtConcurrent::mapped(&pool, indices, [&function](std::size_t index) noexcept -> Outcome<Result> {
            try {
                return {function(index), {}};
            } catch (...) {
                return {{}, std::current_exception()};
            }
        });
    for (std::size_t i = 0; i < count; ++i) {
        const Outcome<Result> outcome = outcomes.resultAt(static_cast<int>(i)); // waits for it
        if (outcome.failure) {
            outcomes.cancel();
            outcomes.waitForFinished();
            std::rethrow_exception(outcome.failure);
        }
        each(i, outcome.result);
    }
}

// The frames, the sharpest first.
std::vector<std::size_t> bySharpness(const std::vector<QImage>& frames)
{
    std::vector<double> sharpness(frames.size());
    forEachIndex<double>(
        frames.size(), [&](std::size_t i) { return edgeSharpness(frames[i]); },
        [&](std::size_t i, double value) { sharpness[i] = value; });
    std::vector<std::size_t> order(frames.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, std::ranges::greater(), [&](std::size_t i) { return sharpness[i]; });
    return order;
}

// Moves each side inwards until the frame shows all four corners.
void shrink(QRectF& part, const Placement& placement, QSize size)
{
    const QPointF middle((size.width() - 1) / 2.0, (size.height() - 1) / 2.0);
    constexpr double STEP = 0.25; // pixels
    const auto outside = [&](QPointF corner) {
        const QPointF at = placement.shownAt(corner - middle);
        return QPointF(std::max(0.0, std::abs(at.x()) - middle.x()), std::max(0.0, std::abs(at.y()) - middle.y()));
    };
    for (bool whole = false; !whole && part.width() > 0 && part.height() > 0;) {
        whole = true;
        for (const bool right : {false, true}) {
            for (const bool bottom : {false, true}) {
                const QPointF by = outside({right ? part.right() : part.left(), bottom ? part.bottom() : part.top()});
                if (by.isNull())
                    continue;
                whole = false;
                if (by.x() > 0)
                    right ? part.setRight(part.right() - by.x() - STEP) : part.setLeft(part.left() + by.x() + STEP);
                if (by.y() > 0)
                    bottom ? part.setBottom(part.bottom() - by.y() - STEP) : part.setTop(part.top() + by.y() + STEP);
            }
        }
    }
}

StackPlacement placeOver(std::size_t reference, const std::vector<QImage>& frames,
                         const std::function<void(int)>& progress)
{
    StackPlacement placement{reference, std::vector<std::optional<Placement>>(frames.size())};
    placement.frames[reference] = Placement{};

    const std::vector<std::size_t> order = outwards(reference, frames.size());
    std::vector<std::optional<Placement>> overNeighbour(frames.size());
    forEachIndex<std::optional<Placement>>(
        order.size(),
        [&](std::size_t i) {
            const std::size_t frame = order[i];
            return registerFrame(frames[frame], frames[frame < reference ? frame + 1 : frame - 1]);
        },
        [&](std::size_t i, const std::optional<Placement>& found) {
            overNeighbour[order[i]] = found;
            progress(static_cast<int>(100 * (i + 1) / order.size()));
        });

    std::size_t inner = reference;
    for (const std::size_t frame : order) {
        if (frame == reference + 1)
            inner = reference; // on to the other side
        const bool areNeighbours = frame + 1 == inner || inner + 1 == frame;
        const auto over = areNeighbours ? overNeighbour[frame] : registerFrame(frames[frame], frames[inner]);
        if (!over)
            continue;
        placement.frames[frame] = over->over(*placement.frames[inner]);
        inner = frame;
    }
    return placement;
}

} // namespace

std::size_t StackPlacement::leftOut() const
{
    return static_cast<std::size_t>(std::ranges::count(frames, false, &std::optional<Placement>::has_value));
}

bool StackPlacement::leavesOutMost() const
{
    return 2 * leftOut() > frames.size() - 1;
}

std::vector<std::size_t> outwards(std::size_t reference, std::size_t count)
{
    std::vector<std::size_t> order;
    for (std::size_t frame = reference; frame-- > 0;)
        order.push_back(frame);
    for (std::size_t frame = reference + 1; frame < count; ++frame)
        order.push_back(frame);
    return order;
}

StackPlacement placeFrames(const std::vector<QImage>& frames, const std::function<void(int)>& progress)
{
    const std::vector<std::size_t> order = bySharpness(frames);
    StackPlacement placement = placeOver(order.front(), frames, progress);
    if (!placement.leavesOutMost())
        return placement;
    // The sharpest may be the one that shows something else.
    StackPlacement next = placeOver(order[1], frames, [](int) {});
    return next.leftOut() < placement.leftOut() ? next : placement;
}

std::uint64_t placementMemory(QSize size)
{
    return MOST_THREADS * registrationMemory(size);
}

QRect sharedPart(const StackPlacement& placement, QSize size)
{
    QRectF part(0, 0, size.width() - 1, size.height() - 1); // from the middle of the first pixel to that of the last
    for (const auto& frame : placement.frames) {
        if (frame)
            shrink(part, *frame, size);
    }
    if (part.width() <= 0 || part.height() <= 0)
        return {};
    return QRect(QPoint(static_cast<int>(std::ceil(part.left())), static_cast<int>(std::ceil(part.top()))),
                 QPoint(static_cast<int>(std::floor(part.right())), static_cast<int>(std::floor(part.bottom()))));
}

} // namespace tesmor::apps
