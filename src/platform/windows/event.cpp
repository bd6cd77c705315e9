// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/event.h"

#include <new>

namespace tesmor::platform {

Event::Event(Reset reset, bool signalled) noexcept
    : native_(CreateEventA(nullptr, reset == Reset::manual, signalled, nullptr))
{
}

Event::~Event()
{
    if (native_)
        CloseHandle(native_);
}

std::unique_ptr<Event> Event::create(Reset reset, bool signalled) noexcept
{
    std::unique_ptr<Event> event(new (std::nothrow) Event(reset, signalled));
    if (event && !event->valid())
        event.reset();
    return event;
}

bool Event::valid() const noexcept
{
    return native_ != nullptr;
}

bool Event::set() noexcept
{
    return SetEvent(native_) != 0;
}

void Event::reset() noexcept
{
    ResetEvent(native_);
}

void Event::wait() noexcept
{
    WaitForSingleObject(native_, INFINITE);
}

bool Event::waitFor(std::uint32_t milliseconds) noexcept
{
    return WaitForSingleObject(native_, milliseconds) == WAIT_OBJECT_0;
}

} // namespace tesmor::platform
