// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/camera_source.h"

#include <exception>
#include <thread>
#include <utility>

namespace tesmor::cameras {

namespace {

using namespace std::chrono_literals;

constexpr auto OPEN_LIMIT = 20s; // a camera that is in use takes some 6 seconds to say so
constexpr auto STOP_LIMIT = 500ms;
constexpr auto CLOSE_LIMIT = 500ms;
constexpr auto TICK = 50ms; // between two looks at what is wished

std::size_t indexOf(Control control)
{
    return static_cast<std::size_t>(control);
}

} // namespace

std::shared_ptr<CameraSource> CameraSource::open(const DeviceMaker& make)
{
    auto source = std::make_shared<CameraSource>();
    std::thread([source, make] { source->run(make); }).detach();
    source->awaitOpen();
    return source;
}

void CameraSource::awaitOpen()
{
    std::unique_lock lock(mutex_);
    const bool answered = changed_.wait_for(lock, OPEN_LIMIT, [this] { return state_ != State::OPENING; });
    if (answered && state_ == State::RESTING)
        return;
    wish_ = Wish::CLOSE;
    changed_.notify_all();
    throw CameraError(answered ? failure_ : "the camera does not respond; unplug it and plug it in again");
}

void CameraSource::start(FrameSink frameSink, EventSink eventSink)
{
    std::unique_lock lock(mutex_);
    if (wish_ == Wish::STREAM && state_ == State::STREAMING)
        return;
    if (!changed_.wait_for(lock, OPEN_LIMIT, [this] { return state_ != State::STREAMING; }))
        throw CameraError("the camera does not stop its last stream; unplug it and plug it in again");
    if (state_ != State::RESTING)
        throw CameraError("the camera is lost; plug it in and open it again");
    frameSink_ = std::move(frameSink);
    eventSink_ = std::move(eventSink);
    wish_ = Wish::STREAM;
    state_ = State::STREAMING;
    changed_.notify_all();
}

void CameraSource::stop() noexcept
{
    wishFor(Wish::REST);
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, STOP_LIMIT, [this] { return state_ != State::STREAMING; });
}

void CameraSource::close() noexcept
{
    wishFor(Wish::CLOSE);
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, CLOSE_LIMIT, [this] { return state_ == State::CLOSED; });
}

// When it returns, no call of a sink is under way, and none comes that was not wished for anew.
void CameraSource::wishFor(Wish wish) noexcept
{
    {
        const std::lock_guard lock(mutex_);
        wish_ = wish;
        changed_.notify_all();
    }
    const std::lock_guard noCallUnderWay(sinkMutex_);
}

std::optional<ControlState> CameraSource::control(Control control) const
{
    const std::lock_guard lock(mutex_);
    return controls_[indexOf(control)];
}

void CameraSource::setControl(Control control, double value)
{
    const std::lock_guard lock(mutex_);
    controlWishes_[indexOf(control)] = value;
    changed_.notify_all();
}

void CameraSource::run(const DeviceMaker& make)
{
    try {
        device_ = make();
        readControls();
        setState(State::RESTING);
        while (awaitWish() == Wish::STREAM)
            stream();
    } catch (const std::exception& error) {
        const std::lock_guard lock(mutex_);
        failure_ = error.what();
    }
    device_.reset();
    setState(State::CLOSED);
}

// What was set before a start is in effect when the stream begins.
CameraSource::Wish CameraSource::awaitWish()
{
    while (true) {
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [this] {
                return wish_ == Wish::CLOSE || (state_ != State::LOST && (wish_ == Wish::STREAM || isControlWished()));
            });
            if (wish_ == Wish::CLOSE || !isControlWished())
                return wish_;
        }
        setControls();
    }
}

void CameraSource::stream()
{
    bool lost = false;
    try {
        device_->start();
        takeFrames();
    } catch (const std::exception& error) {
        lost = true;
        setState(State::LOST);
        tell({CameraEvent::LOST, error.what()});
    }
    device_->stop();
    if (!lost)
        setState(State::RESTING);
}

void CameraSource::takeFrames()
{
    StreamWatch watch(Clock::now());
    while (isStreamWished()) {
        setControls();
        if (device_->next(TICK, [&](const Frame& frame) { deliver(frame, watch); }))
            continue;
        const auto exposure = control(Control::EXPOSURE);
        if (const auto news = watch.noFrame(exposure ? exposure->value : 0, Clock::now()))
            tell(*news);
    }
}

void CameraSource::deliver(const Frame& frame, StreamWatch& watch)
{
    if (const auto news = watch.frameComes(frame.width, frame.height, Clock::now()))
        tell(*news);
    callSink([&] { frameSink_(frame); });
}

void CameraSource::tell(const CameraNews& news)
{
    callSink([&] {
        if (eventSink_)
            eventSink_(news.event, news.text);
    });
}

template <class Call>
void CameraSource::callSink(Call call)
{
    const std::lock_guard underWay(sinkMutex_);
    if (isStreamWished())
        call();
}

void CameraSource::setControls()
{
    bool changed = false;
    for (const Control control : CONTROLS) {
        std::optional<double> value;
        {
            const std::lock_guard lock(mutex_);
            value = std::exchange(controlWishes_[indexOf(control)], std::nullopt);
        }
        if (value)
            device_->setControl(control, *value);
        changed = changed || value;
    }
    if (changed)
        readControls();
}

void CameraSource::readControls()
{
    for (const Control control : CONTROLS) {
        const auto state = device_->control(control);
        const std::lock_guard lock(mutex_);
        controls_[indexOf(control)] = state;
    }
}

void CameraSource::setState(State state)
{
    const std::lock_guard lock(mutex_);
    state_ = state;
    changed_.notify_all();
}

bool CameraSource::isStreamWished() const
{
    const std::lock_guard lock(mutex_);
    return wish_ == Wish::STREAM;
}

bool CameraSource::isControlWished() const
{
    return controlWishes_[0] || controlWishes_[1];
}

} // namespace tesmor::cameras
