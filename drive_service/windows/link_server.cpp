// SPDX-License-Identifier: GPL-2.0-or-later
// Plays a unit of the simulated driver braskdrv, which must run. One thread answers requests, and another, which may
// wait for the driver, hands over acknowledgements; see driver/protocol.h.
#include "drive_service/drive_service.h"

#include "drive_service/windows/driver/protocol.h"
#include "drive_service/windows/handle.h"

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

namespace tesmor::service {

namespace {

constexpr DWORD REQUEST_PIPE_BYTES = 65536;

std::wstring nameOf(unsigned unit, const wchar_t* suffix)
{
    return BRASKDRV_PREFIX + std::to_wstring(unit) + suffix;
}

Handle makeEvent(bool manualReset)
{
    return Handle::checked(CreateEventW(nullptr, manualReset, FALSE, nullptr), "drive service event");
}

Handle makeAnswerEvent(unsigned unit, const wchar_t* suffix)
{
    const std::wstring name = L"Global\\" + nameOf(unit, suffix);
    return Handle::checked(CreateEventW(nullptr, FALSE, FALSE, name.c_str()), "drive service answer event");
}

Handle makeRequestPipe(unsigned unit)
{
    const std::wstring name = L"\\\\.\\pipe\\" + nameOf(unit, BRASKDRV_REQUESTS);
    return Handle::checked(
        CreateNamedPipeW(name.c_str(), PIPE_ACCESS_INBOUND | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                         PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE, 1, 0, REQUEST_PIPE_BYTES, 0, nullptr),
        "drive unit " + std::to_string(unit));
}

Handle openControlDevice()
{
    return Handle::checked(CreateFileW(L"\\\\.\\" BRASKDRV_CONTROL_NAME, GENERIC_READ | GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED,
                                       nullptr),
                           "the simulated driver braskdrv, which must be installed and started");
}

DWORD millisecondsUntil(std::optional<Clock::time_point> time)
{
    if (!time)
        return INFINITE;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*time - Clock::now()).count();
    return static_cast<DWORD>(std::clamp<long long>(left, 0, INFINITE - 1));
}

} // namespace

class DriveService::Server {
public:
    Server(MotorController& controller, unsigned unit)
        : controller_(controller), accepted_(makeAnswerEvent(unit, BRASKDRV_ACCEPTED)),
          refused_(makeAnswerEvent(unit, BRASKDRV_REFUSED)), vanished_(makeAnswerEvent(unit, BRASKDRV_VANISHED)),
          requests_(makeRequestPipe(unit)), control_(openControlDevice()), stopSignal_(makeEvent(true)),
          owedSignal_(makeEvent(false))
    {
        const BraskdrvAttach attach{unit, 1};
        if (!control(BRASKDRV_ATTACH, &attach, sizeof attach))
            throwLastError("drive unit " + std::to_string(unit));
        controller_.setWake([this] { SetEvent(owedSignal_.get()); });
        answering_ = std::thread([this] { answerRequests(); });
        acknowledging_ = std::thread([this] { sendEvents(); });
    }

    ~Server()
    {
        control(BRASKDRV_DETACH, nullptr, 0);
        SetEvent(stopSignal_.get());
        answering_.join();
        acknowledging_.join();
        controller_.setWake({});
        controller_.forgetEvents();
    }

private:
    bool control(DWORD code, const void* input, std::size_t length)
    {
        Overlapped operation;
        DWORD count = 0;
        return operation.finish(control_.get(),
                                DeviceIoControl(control_.get(), code, const_cast<void*>(input),
                                                static_cast<DWORD>(length), nullptr, 0, &count, operation.get()));
    }

    void answerRequests()
    {
        while (const std::optional<BraskdrvRequest> request = receiveRequest()) {
            if (request->client != client_.exchange(request->client))
                controller_.forgetEvents(); // what the client before was owed
            const auto input = std::span(request->input).first(request->length);
            answer(controller_.request(request->code, input, Clock::now()).answer);
            SetEvent(owedSignal_.get());
        }
    }

    // None once the unit is detached.
    std::optional<BraskdrvRequest> receiveRequest()
    {
        BraskdrvRequest request{};
        Overlapped operation;
        const BOOL read = ReadFile(requests_.get(), &request, sizeof request, nullptr, operation.get());
        if (!operation.finish(requests_.get(), read, stopSignal_.get()))
            return std::nullopt;
        return request;
    }

    void answer(Answer answer)
    {
        if (answer == Answer::accepted)
            SetEvent(accepted_.get());
        if (answer == Answer::refused)
            SetEvent(refused_.get());
        if (answer == Answer::vanish)
            SetEvent(vanished_.get());
    }

    void sendEvents()
    {
        const std::array<HANDLE, 2> signals{stopSignal_.get(), owedSignal_.get()};
        while (!controller_.hasVanished()) {
            const DWORD limit = millisecondsUntil(controller_.nextEventTime());
            if (WaitForMultipleObjects(2, signals.data(), FALSE, limit) == WAIT_OBJECT_0)
                return;
            controller_.emitDue(Clock::now(), [this](Event event) { emit(event); });
        }
    }

    void emit(Event event)
    {
        if (event == Event::vanish) {
            control(BRASKDRV_DETACH, nullptr, 0);
            return;
        }
        if (event == Event::failure)
            return; // the driver cuts no single client; its wait for the acknowledgement ends by itself
        const BraskdrvAcknowledgement acknowledgement{client_, ACKNOWLEDGEMENT_BYTE};
        control(BRASKDRV_ACKNOWLEDGE, &acknowledgement, sizeof acknowledgement);
    }

    MotorController& controller_;
    Handle accepted_; // the answers to requests
    Handle refused_;
    Handle vanished_;
    Handle requests_;
    Handle control_;
    Handle stopSignal_;
    Handle owedSignal_;                    // set when an event may have become due earlier
    std::atomic<std::uint32_t> client_{0}; // whose request came last
    std::thread answering_;
    std::thread acknowledging_;
};

DriveService::DriveService(MotorController& controller, unsigned unit)
    : server_(std::make_unique<Server>(controller, unit))
{
}

DriveService::~DriveService() = default;

} // namespace tesmor::service
