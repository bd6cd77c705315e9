// SPDX-License-Identifier: GPL-2.0-or-later
#include "commands.h"

#include "interpreter.h"
#include "tesmor.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <new>
#include <stdexcept>
#include <utility>

namespace tesmor::python {

namespace {

using namespace std::chrono_literals;

constexpr auto TICK = 50ms;

bool workerStarted = false; // with the GIL

// One thread at a time hands a command over or aborts one: of the library's posts one that comes later may be served
// first, and an abort would be lost on the command that overtakes it.
std::mutex& handover = *new std::mutex;

thread_local bool greyFrames; // of the frame in tesmor_video on this thread

} // namespace

// What the library's threads have told. Never holds its lock while it waits for the GIL.
class Reports {
public:
    using Number = std::uintptr_t;

    // With the GIL, like the next one.
    Number add(const std::shared_ptr<Command>& command)
    {
        forgetEnded();
        const std::lock_guard lock(mutex_);
        commands_.emplace(++lastNumber_, command);
        return lastNumber_;
    }

    void forgetEnded()
    {
        std::vector<std::shared_ptr<Command>> ended; // destroyed after the lock has gone
        const std::lock_guard lock(mutex_);
        for (auto entry = commands_.begin(); entry != commands_.end();) {
            if (entry->second->result_) {
                ended.push_back(std::move(entry->second));
                entry = commands_.erase(entry);
            } else {
                ++entry;
            }
        }
    }

    void posted(Number number)
    {
        const std::lock_guard lock(mutex_);
        if (const auto entry = commands_.find(number); entry != commands_.end())
            entry->second->posted_ = true;
    }

    // Those that the library has taken over and that have not ended.
    std::vector<Number> running()
    {
        const std::lock_guard lock(mutex_);
        std::vector<Number> numbers;
        for (const auto& [number, command] : commands_) {
            if (command->posted_ && !command->result_)
                numbers.push_back(number);
        }
        return numbers;
    }

    void end(Number number, std::int32_t result)
    {
        const std::lock_guard lock(mutex_);
        if (const auto entry = commands_.find(number); entry != commands_.end() && !entry->second->result_)
            end(*entry->second, result);
    }

    void progress(Number number, std::int32_t percent)
    {
        const std::lock_guard lock(mutex_);
        if (const auto entry = commands_.find(number); entry != commands_.end())
            entry->second->percent_ = percent;
    }

    void frame(Number number, const std::uint8_t* image, std::size_t width, std::size_t height, bool last)
    {
        const std::size_t size = rowBytes(width) * height;
        TakenFrame frame{std::unique_ptr<std::uint8_t[]>(new (std::nothrow) std::uint8_t[size]), width, height,
                         greyFrames};
        if (frame.pixels)
            std::copy_n(image, size, frame.pixels.get());
        const std::lock_guard lock(mutex_);
        const auto entry = commands_.find(number);
        if (entry == commands_.end() || entry->second->result_)
            return;
        entry->second->frames_.push_back(std::move(frame));
        if (last)
            end(*entry->second, TESMOR_SUCCESS);
    }

    std::optional<std::int32_t> waitATick(const Command& command)
    {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, TICK, [&] { return command.result_.has_value(); });
        return command.result_;
    }

    std::mutex& mutex()
    {
        return mutex_;
    }

private:
    void end(Command& command, std::int32_t result)
    {
        command.result_ = result;
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<Number, std::shared_ptr<Command>> commands_;
    Number lastNumber_ = 0;
};

namespace {

// Never destroyed: the library's threads may call at any time.
Reports& reports = *new Reports;

Reports::Number numberOf(void* context)
{
    return reinterpret_cast<Reports::Number>(context);
}

void onDone(void* context, std::int32_t result)
{
    reports.end(numberOf(context), result);
}

void onStack(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context, std::int32_t result)
{
    if (image == nullptr)
        reports.end(numberOf(context), result);
    else
        reports.frame(numberOf(context), image, static_cast<std::size_t>(width), static_cast<std::size_t>(height),
                      false);
}

void onCapture(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context, std::int32_t)
{
    reports.frame(numberOf(context), image, static_cast<std::size_t>(width), static_cast<std::size_t>(height), true);
}

void onFusion(const std::uint8_t* image, std::int32_t, std::int32_t, void* context, std::int32_t result)
{
    if (image == nullptr)
        reports.progress(numberOf(context), result);
    else
        reports.end(numberOf(context), result);
}

void startWorker()
{
    requireUsable();
    if (!workerStarted && tesmor_init() == 0)
        throw std::runtime_error("could not start a thread; close other programs");
    workerStarted = true;
}

template <class Post>
std::shared_ptr<Command> post(std::shared_ptr<Command> command, Post post)
{
    startWorker();
    const Reports::Number number = reports.add(command);
    const GilReleased released;
    const std::lock_guard lock(handover);
    post(reinterpret_cast<void*>(number));
    reports.posted(number);
    return command;
}

} // namespace

std::optional<std::int32_t> Command::wait()
{
    std::optional<std::int32_t> result;
    {
        const GilReleased released;
        result = reports.waitATick(*this);
    }
    if (result)
        reports.forgetEnded();
    return result;
}

std::int32_t Command::percent() const
{
    const std::lock_guard lock(reports.mutex());
    return percent_;
}

py::list Command::takeFrames()
{
    std::vector<TakenFrame> frames;
    {
        const std::lock_guard lock(reports.mutex());
        frames = std::move(frames_);
    }
    py::list arrays;
    for (TakenFrame& frame : frames) {
        if (!frame.pixels)
            throw std::bad_alloc();
        arrays.append(toArray(frame.pixels.get(), frame.width, frame.height, frame.grey));
        frame.pixels.reset();
    }
    return arrays;
}

py::array Command::fused() const
{
    return toArray(output_.get(), width_, height_, grey_);
}

std::shared_ptr<Command> startAutofocus(std::uint16_t magnification)
{
    return post(std::make_shared<Command>(), [=](void* context) { tesmor_start(magnification, onDone, context); });
}

std::shared_ptr<Command> startStack(std::uint16_t magnification, std::uint16_t count, std::int32_t spacing)
{
    return post(std::make_shared<Command>(),
                [=](void* context) { tesmor_startif(magnification, count, spacing, onStack, context, 0); });
}

std::shared_ptr<Command> startMove(double degrees)
{
    return post(std::make_shared<Command>(), [=](void* context) { tesmor_manual(degrees, onDone, context); });
}

std::shared_ptr<Command> startCapture()
{
    return post(std::make_shared<Command>(), [](void* context) { tesmor_capture(onCapture, context); });
}

std::shared_ptr<Command> startFusion(std::vector<std::shared_ptr<Picture>> images, std::uint32_t width,
                                     std::uint32_t height, bool grey)
{
    const auto command = std::make_shared<Command>();
    command->images_ = std::move(images);
    command->output_ = std::make_unique_for_overwrite<std::uint8_t[]>(rowBytes(width) * height);
    command->width_ = width;
    command->height_ = height;
    command->grey_ = grey;
    std::vector<const std::uint8_t*> pixels;
    for (const auto& image : command->images_)
        pixels.push_back(image->pixels());
    return post(command, [&](void* context) {
        tesmor_fusion(pixels.data(), pixels.size(), width, height, command->output_.get(), onFusion, context);
    });
}

void abortCommand()
{
    if (!workerStarted)
        return;
    const std::vector<Reports::Number> running = reports.running();
    tesmor_stop();
    for (const Reports::Number number : running)
        reports.end(number, TESMOR_ABORTED); // a capture, which told nothing
}

void stop()
{
    {
        const GilReleased released;
        const std::lock_guard lock(handover);
        abortCommand();
    }
    reports.forgetEnded();
}

void release()
{
    stop();
    const GilReleased released;
    const std::lock_guard lock(handover);
    if (workerStarted)
        tesmor_reset();
}

void video(const py::array& frame)
{
    static std::mutex& oneAtATime = *new std::mutex;
    static Picture::Room& room = *new Picture::Room;
    if (!isUsable() || tesmor_doing() == 0)
        return; // the library would not look at it
    const Picture::Layout layout(frame);
    const GilReleased released;
    const std::lock_guard lock(oneAtATime);
    greyFrames = layout.colourStride == 0;
    tesmor_video(Picture::pixelsOf(layout, room), static_cast<std::int32_t>(layout.width),
                 static_cast<std::int32_t>(layout.height));
}

void endWorker()
{
    if (workerStarted)
        tesmor_fini();
}

} // namespace tesmor::python
