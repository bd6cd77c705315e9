// The focus drive's device on Windows: the camera driver's device object, opened for overlapped input and output. The
// acknowledgement read is the only overlapped operation; control requests are synchronous.
#include "platform/drive_device.h"

#include <cwchar>
#include <new>

namespace tesmor::platform {

// Never made: a DeviceHandle is the file handle itself.
class DriveDevice {};

namespace {

constexpr std::size_t NAME_CHARACTERS = 32;
constexpr DWORD TARGET_CHARACTERS = 260;

// What the system writes to when a read ends, which may be long after the wait for it, and even after its device was
// closed.
struct Read {
    OVERLAPPED overlapped{};
    std::uint8_t byte = 0;
    Read* next = nullptr;

    bool ended() const noexcept
    {
        return HasOverlappedIoCompleted(&overlapped);
    }
};

// The reads that nobody waits for any more. Several of them share one event: a byte that one of them takes wakes the
// wait for the newest.
class LeftReads {
public:
    void add(Read* read) noexcept
    {
        read->next = first_;
        first_ = read;
    }

    void freeEnded() noexcept
    {
        for (Read** link = &first_; *link;) {
            Read* const read = *link;
            if (read->ended()) {
                *link = read->next;
                delete read;
            } else {
                link = &read->next;
            }
        }
    }

private:
    Read* first_ = nullptr;
};

constinit LeftReads leftReads; // without a destructor: the system may still write to them when the process ends

HANDLE fileOf(DeviceHandle device) noexcept
{
    return reinterpret_cast<HANDLE>(device);
}

// True also when the read goes on in the background.
bool beginRead(DeviceHandle device, Read& read) noexcept
{
    return ReadFile(fileOf(device), &read.byte, 1, nullptr, &read.overlapped) || GetLastError() == ERROR_IO_PENDING;
}

} // namespace

bool deviceExists(unsigned unit) noexcept
{
    wchar_t name[NAME_CHARACTERS];
    wchar_t target[TARGET_CHARACTERS];
    std::swprintf(name, NAME_CHARACTERS, L"braskdrv-%u-1010", unit);
    return QueryDosDeviceW(name, target, TARGET_CHARACTERS) != 0;
}

DeviceHandle openDevice(unsigned unit) noexcept
{
    wchar_t path[NAME_CHARACTERS];
    std::swprintf(path, NAME_CHARACTERS, L"\\\\.\\braskdrv-%u-1010", unit);
    const HANDLE file = CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OVERLAPPED, nullptr);
    return file == INVALID_HANDLE_VALUE ? INVALID_DEVICE : reinterpret_cast<DeviceHandle>(file);
}

// The driver only reads the input; DeviceIoControl's parameter is not const.
bool controlDevice(DeviceHandle device, std::uint32_t code, std::span<const std::uint8_t> input) noexcept
{
    DWORD returned = 0;
    return device != INVALID_DEVICE &&
           DeviceIoControl(fileOf(device), code, const_cast<std::uint8_t*>(input.data()),
                           static_cast<DWORD>(input.size()), nullptr, 0, &returned, nullptr);
}

bool readDeviceByte(DeviceHandle device, Event* completion, std::uint32_t timeoutMs) noexcept
{
    leftReads.freeEnded();
    if (device == INVALID_DEVICE || !completion)
        return false;
    Read* const read = new (std::nothrow) Read;
    if (!read)
        return false;
    read->overlapped.hEvent = completion->native();
    if (!beginRead(device, *read)) {
        delete read;
        return false;
    }
    DWORD count = 0;
    const bool succeeded =
        completion->waitFor(timeoutMs) && GetOverlappedResult(fileOf(device), &read->overlapped, &count, TRUE);
    leftReads.add(read);
    leftReads.freeEnded();
    return succeeded;
}

void closeDevice(DeviceHandle device) noexcept
{
    CloseHandle(fileOf(device));
    leftReads.freeEnded();
}

} // namespace tesmor::platform
