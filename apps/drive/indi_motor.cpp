// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/indi_motor.h"

#include "drive/indi_client.h"

#include <cmath>
#include <cstdlib>

namespace tesmor::drive {

using namespace std::chrono_literals;

namespace {

constexpr auto DEVICE_LIMIT = 5s;
constexpr auto REFUSAL_LIMIT = 300ms; // a driver answers within a tenth of a second
constexpr auto SETTLED_AFTER = 2s;    // without news, wherever the focuser then is
constexpr auto SILENCE_LIMIT = 30s;

} // namespace

IndiMotor::IndiMotor(IndiSettings settings) : settings_(std::move(settings)) {}

IndiMotor::~IndiMotor() = default;

std::string IndiMotor::name() const
{
    return "the focuser \"" + settings_.device + "\" of the INDI server " + settings_.host + ":" +
           std::to_string(settings_.port);
}

void IndiMotor::lose(const std::string& what) const
{
    throw MotorLost(name() + " " + what);
}

void IndiMotor::connect()
{
    client_.reset();
    auto client = std::make_unique<IndiClient>(settings_.device);
    client->setServer(settings_.host.c_str(), settings_.port);
    client->setConnectionTimeout(3, 0);
    if (!client->connectServer())
        lose("cannot be reached: the server does not run; start it, as in: indiserver indi_simulator_focus");
    if (!client->waitFor(DEVICE_LIMIT, [](const FocuserState& s) { return s.isThere; }))
        lose("is not there; see: tesmor-drive list");
    client->connectDevice(settings_.device.c_str());
    if (!client->waitFor(DEVICE_LIMIT, [](const FocuserState& s) { return s.isConnected; }))
        lose("does not connect to its device; is that plugged in, and is its port set?");
    if (!client->waitFor(DEVICE_LIMIT, [](const FocuserState& s) { return s.relative.news > 0; }))
        lose("takes no moves by steps: it has no REL_FOCUS_POSITION");
    client_ = std::move(client);
}

void IndiMotor::begin(std::int64_t steps)
{
    if (!client_ || client_->state().hasGone)
        lose("is lost: the server has ended");
    const FocuserState now = client_->state();
    turns_ = steps != 0;
    if (!turns_)
        return;
    newsBefore_ = now.relative.news;
    target_ = now.absolute.value + static_cast<double>(steps);
    if (now.absolute.news > 0 && (target_ < now.absolute.low || target_ > now.absolute.high))
        throw MotorRefused(name() + " stands at " + std::to_string(std::llround(now.absolute.value)) + " and ends at " +
                           std::to_string(std::llround(steps < 0 ? now.absolute.low : now.absolute.high)) +
                           "; a move by " + std::to_string(steps) + " is refused");
    client_->sendMove(steps);
    client_->waitFor(REFUSAL_LIMIT, [&](const FocuserState& s) { return s.relative.news > newsBefore_; });
    const FocuserNumber answer = client_->state().relative;
    if (answer.news != newsBefore_ && answer.state == IPS_ALERT)
        throw MotorRefused(name() + " refuses a move by " + std::to_string(steps));
}

// The relative position may be done before the absolute one is told, and some drivers never call it busy.
void IndiMotor::finish()
{
    while (turns_) {
        const FocuserState now = client_->state();
        const bool isTold = now.relative.news > newsBefore_;
        const bool stands = isTold && now.relative.state != IPS_BUSY && now.absolute.state != IPS_BUSY;
        if (now.hasGone)
            lose("is lost: the server has ended");
        if (isTold && now.relative.state == IPS_ALERT)
            lose("has ended a move with an alert");
        if (stands && (now.absolute.news == 0 || std::llround(now.absolute.value) == std::llround(target_)))
            return;
        const bool isNews = client_->waitFor(stands ? SETTLED_AFTER : SILENCE_LIMIT, [&](const FocuserState& s) {
            return s.hasGone || s.relative.news + s.absolute.news != now.relative.news + now.absolute.news;
        });
        if (!isNews && stands)
            return;
        if (!isNews)
            lose("has fallen silent in a move");
    }
}

std::string IndiMotor::describe(std::int64_t steps) const
{
    return std::string("FOCUS_MOTION ") + (steps > 0 ? "FOCUS_OUTWARD" : "FOCUS_INWARD") + ", REL_FOCUS_POSITION " +
           std::to_string(std::abs(steps));
}

std::int64_t IndiMotor::largestMove() const
{
    const double largest = client_ ? client_->state().relative.high : 0;
    return largest >= 1 ? static_cast<std::int64_t>(largest) : Motor::largestMove();
}

} // namespace tesmor::drive
