// SPDX-License-Identifier: GPL-2.0-or-later
// The focus drive's device on Windows: the camera driver's device object, opened for overlapped input and output. The
// acknowledgement read is the only overlapped operation; control requests are synchronous.
#include "platform/drive_device.h"

#include "platform/clock.h"
#include "protocol/drive_codes.h"

#include <algorithm>
#include <cwchar>
#include <new>

namespace tesmor::platform {

namespace {

constexpr std::size_t NAME_CHARACTERS = 32;
constexpr DWORD TARGET_CHARACTERS = 260;

// What the system writes to when a read ends, which may be long after the wait for it, and even after its device was
// closed.
struct Read {
    HANDLE device; // INVALID_HANDLE_VALUE once it is closed
    OVERLAPPED overlapped{};
    std::uint8_t byte = 0;
    Read* next = nullptr;

    // True also when the read goes on in the background.
    bool begin() noexcept
    {
        return ReadFile(device, &byte, 1, nullptr, &overlapped) || GetLastError() == ERROR_IO_PENDING;
    }

    bool ended() const noexcept
    {
        return HasOverlappedIoCompleted(&overlapped);
    }

    // Of a read that has ended.
    bool tookByte() noexcept
    {
        DWORD count = 0;
        return device != INVALID_HANDLE_VALUE && GetOverlappedResult(device, &overlapped, &count, TRUE);
    }
};

// The reads that have begun. One that timed out goes on and may take a byte before the next one does, also between two
// waits: the byte counts for whoever waits next.
class Reads {
public:
    void add(Read* read) noexcept
    {
        read->next = first_;
        first_ = read;
    }

    // Whether a byte has come from `device` that was not taken yet; takes it. Frees every read that has ended, but for
    // those whose bytes are still to be taken.
    bool takeByte(HANDLE device) noexcept
    {
        bool taken = false;
        for (Read** link = &first_; *link;) {
            Read* const read = *link;
            if (!read->ended() || (read->tookByte() && (taken || read->device != device))) {
                link = &read->next;
                continue;
            }
            taken = taken || read->tookByte();
            *link = read->next;
            delete read;
        }
        return taken;
    }

    // Whether `read` was added and not yet freed.
    bool contains(const Read* read) const noexcept
    {
        const Read* other = first_;
        while (other && other != read)
            other = other->next;
        return other;
    }

    // What its reads bring is of no interest any more.
    void disown(HANDLE device) noexcept
    {
        for (Read* read = first_; read; read = read->next) {
            if (read->device == device)
                read->device = INVALID_HANDLE_VALUE;
        }
        takeByte(INVALID_HANDLE_VALUE);
    }

private:
    Read* first_ = nullptr;
};

constinit Reads reads; // without a destructor: the system may still write to them when the process ends

class DriverDevice final : public DriveDevice {
public:
    explicit DriverDevice(HANDLE file) noexcept : file_(file) {}

    ~DriverDevice() override
    {
        CloseHandle(file_);
        reads.disown(file_);
    }

    // The driver only reads the input; DeviceIoControl's parameter is not const.
    bool control(std::uint32_t code, std::span<const std::uint8_t> input) noexcept override
    {
        DWORD returned = 0;
        return DeviceIoControl(file_, code, const_cast<std::uint8_t*>(input.data()), static_cast<DWORD>(input.size()),
                               nullptr, 0, &returned, nullptr);
    }

    bool readByte(Event* completion, std::uint32_t timeoutMs) noexcept override
    {
        if (!completion)
            return false;
        Read* const read = new (std::nothrow) Read{file_};
        if (!read)
            return false;
        read->overlapped.hEvent = completion->native();
        if (!read->begin()) {
            delete read;
            return false;
        }
        reads.add(read);
        const std::uint32_t start = systemClock().tickMilliseconds();
        std::uint32_t waited = 0;
        while (!reads.takeByte(file_)) {
            if (!reads.contains(read) || !completion->waitFor(timeoutMs - std::min(waited, timeoutMs)))
                return false;
            completion->reset(); // an older read may have ended without a byte: wait on for this one
            waited = systemClock().tickMilliseconds() - start;
        }
        return true;
    }

private:
    const HANDLE file_;
};

class SystemDriveUnits final : public DriveUnits {
public:
    bool exists(unsigned unit) noexcept override
    {
        wchar_t name[NAME_CHARACTERS];
        wchar_t target[TARGET_CHARACTERS];
        std::swprintf(name, NAME_CHARACTERS, L"" DRIVE_NAME_FORMAT, unit);
        return QueryDosDeviceW(name, target, TARGET_CHARACTERS) != 0;
    }

    std::unique_ptr<DriveDevice> open(unsigned unit) noexcept override
    {
        wchar_t path[NAME_CHARACTERS];
        std::swprintf(path, NAME_CHARACTERS, L"\\\\.\\" DRIVE_NAME_FORMAT, unit);
        const HANDLE file = CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_OVERLAPPED, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return nullptr;
        if (auto* device = new (std::nothrow) DriverDevice(file))
            return std::unique_ptr<DriveDevice>(device);
        CloseHandle(file);
        return nullptr;
    }
};

constinit SystemDriveUnits instance;

} // namespace

DriveUnits& systemDriveUnits() noexcept
{
    return instance;
}

} // namespace tesmor::platform
