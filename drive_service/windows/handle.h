// SPDX-License-Identifier: GPL-2.0-or-later
// Handles of the system that close themselves, and overlapped operations that never outlive their memory.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <array>
#include <string>
#include <system_error>
#include <utility>

namespace tesmor::service {

[[noreturn]] inline void throwLastError(const std::string& what)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

class Handle {
public:
    explicit Handle(HANDLE handle = nullptr) noexcept : handle_(handle) {}

    // Throws std::system_error when the call that made `handle` has failed.
    static Handle checked(HANDLE handle, const std::string& what)
    {
        if (!handle || handle == INVALID_HANDLE_VALUE)
            throwLastError(what);
        return Handle(handle);
    }

    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}

    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }

    ~Handle()
    {
        if (handle_)
            CloseHandle(handle_);
    }

    HANDLE get() const noexcept
    {
        return handle_;
    }

private:
    HANDLE handle_;
};

class Overlapped {
public:
    Overlapped() : completed_(Handle::checked(CreateEventW(nullptr, TRUE, FALSE, nullptr), "overlapped operation"))
    {
        overlapped_.hEvent = completed_.get();
    }

    Overlapped(const Overlapped&) = delete;
    Overlapped& operator=(const Overlapped&) = delete;

    OVERLAPPED* get() noexcept
    {
        return &overlapped_;
    }

    // Waits until the operation that was begun on `file`, and returned `begun`, has ended; true when it succeeded.
    // `stop`, where given, is an event that cancels it.
    bool finish(HANDLE file, BOOL begun, HANDLE stop = nullptr) noexcept
    {
        if (!begun && GetLastError() != ERROR_IO_PENDING)
            return false;
        const std::array<HANDLE, 2> signals{completed_.get(), stop};
        if (stop && WaitForMultipleObjects(2, signals.data(), FALSE, INFINITE) == WAIT_OBJECT_0 + 1)
            CancelIo(file);
        DWORD count = 0;
        return GetOverlappedResult(file, &overlapped_, &count, TRUE);
    }

private:
    Handle completed_;
    OVERLAPPED overlapped_{};
};

} // namespace tesmor::service
