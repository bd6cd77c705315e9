// SPDX-License-Identifier: GPL-2.0-or-later
// The drive link on a local socket: one thread serves all clients of a unit.
#include "drive_service/drive_service.h"
#include "drive_service/linux/link_socket.h"
#include "protocol/drive_link.h"
#include "protocol/drive_request.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <list>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <vector>

namespace tesmor::service {

namespace {

constexpr std::size_t MOST_CLIENTS = 32;
constexpr int MOST_REQUESTS_AT_A_LOOK = 64; // so that nobody keeps the others waiting for ever

timespec timeUntil(Clock::time_point time)
{
    const auto left = std::max(Clock::duration::zero(), time - Clock::now());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const auto rest = std::chrono::duration_cast<std::chrono::nanoseconds>(left - seconds);
    return {static_cast<time_t>(seconds.count()), static_cast<long>(rest.count())};
}

// Of every kind that a client must ignore: other lengths than those of a reply and an acknowledgement, and a reply to a
// code that was never sent.
void sendRubbish(LinkSocket& client, std::uint32_t code)
{
    constexpr std::array<std::uint8_t, 300> bytes{0xDE, 0xAD, 0xBE, 0xEF};
    for (const std::size_t length : {2u, 3u, 4u, 6u, 14u, 300u})
        client.send(std::span(bytes).first(length));
    client.send(makeDriveReply(~code, true));
}

} // namespace

class DriveService::Server {
public:
    Server(MotorController& controller, unsigned unit)
        : controller_(controller), listener_(listenOnUnit(unit)),
          wakeSignal_(Descriptor::checked(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "drive service signal")),
          stopSignal_(Descriptor::checked(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "drive service signal"))
    {
        controller_.setWake([this] { eventfd_write(wakeSignal_.get(), 1); });
        thread_ = std::thread([this] { serve(); });
    }

    ~Server()
    {
        eventfd_write(stopSignal_.get(), 1);
        thread_.join();
        controller_.setWake({});
        controller_.forgetEvents();
    }

private:
    void serve()
    {
        while (!controller_.hasVanished()) {
            const bool newcomer = waitForSignals();
            if (stopped_)
                return;
            controller_.emitDue(Clock::now(), [this](Event event) { emit(event); });
            for (LinkSocket& client : clients_)
                takeRequest(client);
            if (newcomer)
                acceptClient();
            releaseTheGone();
            clients_.remove_if([](const LinkSocket& client) { return !client.isOpen(); });
        }
        clients_.clear();
        listener_.close();
    }

    // True when somebody wants to connect.
    bool waitForSignals()
    {
        std::vector<pollfd> watched{
            {stopSignal_.get(), POLLIN, 0}, {wakeSignal_.get(), POLLIN, 0}, {listener_.get(), POLLIN, 0}};
        for (const LinkSocket& client : clients_)
            watched.push_back({client.get(), POLLIN, 0});
        const std::optional<Clock::time_point> next = controller_.nextEventTime();
        const timespec limit = next ? timeUntil(*next) : timespec{};
        if (ppoll(watched.data(), watched.size(), next ? &limit : nullptr, nullptr) < 0)
            return false;
        stopped_ = watched[0].revents != 0;
        if (eventfd_t count = 0; watched[1].revents != 0)
            eventfd_read(wakeSignal_.get(), &count);
        return watched[2].revents != 0;
    }

    void acceptClient()
    {
        LinkSocket newcomer(listener_);
        if (newcomer.isOpen() && clients_.size() < MOST_CLIENTS && !isHeldByAnother(nullptr))
            clients_.push_back(std::move(newcomer));
    }

    // Than `client`, who may be nobody yet. Looks whether the holder has gone, past all that it has sent before.
    bool isHeldByAnother(const LinkSocket* client)
    {
        if (!holder_ || holder_ == client)
            return false;
        for (int i = 0; i < MOST_REQUESTS_AT_A_LOOK && holder_ && takeRequest(*holder_); ++i) {
        }
        releaseTheGone();
        return holder_ != nullptr;
    }

    // False when none is there.
    bool takeRequest(LinkSocket& client)
    {
        std::array<std::uint8_t, 64> buffer; // a longer request is malformed, whatever its end says
        const auto packet = client.receive(buffer);
        if (packet)
            answer(client, controlCodeOf(*packet), controlInputOf(*packet));
        return packet.has_value();
    }

    void answer(LinkSocket& client, std::uint32_t code, std::span<const std::uint8_t> input)
    {
        const std::optional<DriveCommand> command = parseDriveCommand(code, input);
        const bool opens = command && command->kind == DriveCommand::Kind::open;
        const bool moves = command && command->kind == DriveCommand::Kind::move;
        if ((opens || moves) && isHeldByAnother(&client)) {
            client.close();
            return;
        }
        const Reaction reaction = controller_.request(code, input, Clock::now());
        if (reaction.answer == Answer::vanish)
            closeAll();
        if (reaction.answer == Answer::accepted && opens)
            holder_ = &client;
        if (reaction.answer == Answer::accepted && moves)
            mover_ = &client;
        if (reaction.answer == Answer::accepted && command->kind == DriveCommand::Kind::close && holder_ == &client)
            holder_ = nullptr;
        if (reaction.rubbish)
            sendRubbish(client, code);
        if (reaction.answer == Answer::accepted || reaction.answer == Answer::refused)
            client.send(makeDriveReply(code, reaction.answer == Answer::accepted));
    }

    void emit(Event event)
    {
        if (event == Event::vanish)
            closeAll();
        else if (mover_ && event == Event::failure)
            mover_->close();
        else if (mover_)
            mover_->send(std::array{ACKNOWLEDGEMENT_BYTE});
    }

    void closeAll()
    {
        for (LinkSocket& client : clients_)
            client.close();
    }

    void releaseTheGone()
    {
        if (holder_ && !holder_->isOpen())
            holder_ = nullptr;
        if (mover_ && !mover_->isOpen()) {
            mover_ = nullptr;
            controller_.forgetEvents();
        }
    }

    MotorController& controller_;
    Descriptor listener_;
    Descriptor wakeSignal_;
    Descriptor stopSignal_;
    std::list<LinkSocket> clients_; // a list, for it is pointed into
    LinkSocket* holder_ = nullptr;  // of the drive
    LinkSocket* mover_ = nullptr;   // whose move was the last
    bool stopped_ = false;
    std::thread thread_;
};

DriveService::DriveService(MotorController& controller, unsigned unit)
    : server_(std::make_unique<Server>(controller, unit))
{
}

DriveService::~DriveService() = default;

} // namespace tesmor::service
