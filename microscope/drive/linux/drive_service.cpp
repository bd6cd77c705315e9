// The drive link's service end. A client must run as root or as the service's own user.
#include "microscope/drive/drive_service.h"

#include "microscope/drive/linux/link_socket.h"
#include "protocol/drive_link.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <ctime>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <thread>
#include <utility>

namespace tesmor::microscope {

namespace {

timespec timeUntil(Clock::time_point time)
{
    const auto left = std::max(Clock::duration::zero(), time - Clock::now());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const auto rest = std::chrono::duration_cast<std::chrono::nanoseconds>(left - seconds);
    return {static_cast<time_t>(seconds.count()), static_cast<long>(rest.count())};
}

} // namespace

class DriveService::Server {
public:
    Server(DriveController& controller, unsigned unit)
        : controller_(controller), listener_(listenOnUnit(unit)),
          stopSignal_(checkedDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "drive service stop signal")),
          thread_([this] { serve(); })
    {
    }

    ~Server()
    {
        eventfd_write(stopSignal_.get(), 1);
        thread_.join();
        dropClient();
    }

private:
    void serve()
    {
        while (!controller_.hasVanished()) {
            std::array<pollfd, 3> watched{pollfd{stopSignal_.get(), POLLIN, 0}, pollfd{listener_.get(), POLLIN, 0},
                                          pollfd{client_.get(), POLLIN, 0}};
            const std::optional<Clock::time_point> next = controller_.nextEventTime();
            const timespec limit = next ? timeUntil(*next) : timespec{};
            ppoll(watched.data(), watched.size(), next ? &limit : nullptr, nullptr);
            if (watched[0].revents != 0)
                return;
            controller_.emitDue(Clock::now(), [this](DriveController::Event event) { emit(event); });
            if (client_.isOpen() && receiveRequest())
                continue; // what the client has sent before it went comes before the next client
            if (watched[1].revents != 0)
                acceptClient();
        }
        dropClient();
        listener_.close();
    }

    void acceptClient()
    {
        Descriptor newcomer = acceptTrusted(listener_);
        if (newcomer.isOpen() && !client_.isOpen())
            client_ = std::move(newcomer);
    }

    // Takes one request; false when none is there. Drops a client that has gone.
    bool receiveRequest()
    {
        std::array<std::uint8_t, 64> buffer; // a longer request is malformed, whatever its end says
        const ssize_t length = recv(client_.get(), buffer.data(), buffer.size(), 0);
        if (length < 0 && (errno == EINTR || errno == EAGAIN))
            return false;
        if (length <= 0) {
            dropClient();
            return false;
        }
        const auto packet = std::span(buffer).first(static_cast<std::size_t>(length));
        const std::uint32_t code = controlCodeOf(packet);
        const auto reaction = controller_.request(code, controlInputOf(packet), Clock::now());
        if (reaction.answer == Answer::vanish) {
            dropClient();
            return false;
        }
        if (reaction.rubbish)
            sendRubbish(code);
        if (reaction.answer != Answer::none)
            send(makeDriveReply(code, reaction.answer == Answer::accepted));
        return true;
    }

    // Of every kind that a client must ignore: other lengths than those of a reply and an acknowledgement, and a reply
    // to a code that was never sent.
    void sendRubbish(std::uint32_t code)
    {
        constexpr std::array<std::uint8_t, 300> bytes{0xDE, 0xAD, 0xBE, 0xEF};
        for (const std::size_t length : {2u, 3u, 4u, 6u, 14u, 300u})
            send(std::span(bytes).first(length));
        send(makeDriveReply(~code, true));
    }

    void emit(DriveController::Event event)
    {
        if (event == DriveController::Event::acknowledgement)
            send(std::array{DriveController::ACKNOWLEDGEMENT_BYTE});
        else
            dropClient();
    }

    // A client that does not take its packets is dropped.
    void send(std::span<const std::uint8_t> packet)
    {
        if (!client_.isOpen())
            return;
        const ssize_t sent = ::send(client_.get(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent != static_cast<ssize_t>(packet.size()))
            dropClient();
    }

    void dropClient()
    {
        client_.close();
        controller_.forgetEvents();
    }

    DriveController& controller_;
    Descriptor listener_;
    Descriptor stopSignal_;
    Descriptor client_; // not open when there is none
    std::thread thread_;
};

DriveService::DriveService(DriveController& controller, unsigned unit) : controller_(controller), unit_(unit) {}

DriveService::~DriveService()
{
    stop();
}

void DriveService::start()
{
    if (!server_)
        server_ = std::make_unique<Server>(controller_, unit_);
}

void DriveService::stop() noexcept
{
    server_.reset();
}

} // namespace tesmor::microscope
