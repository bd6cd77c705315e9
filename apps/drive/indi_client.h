// SPDX-License-Identifier: GPL-2.0-or-later
// What an INDI server last told of one focuser. The server's news come on a thread of the client library.
#pragma once

#include <chrono>
#include <condition_variable>
#include <libindi/baseclient.h>
#include <mutex>
#include <string>

namespace tesmor::drive {

struct FocuserNumber {
    double value = 0;
    double low = 0;
    double high = 0;
    IPState state = IPS_IDLE;
    unsigned long news = 0; // how often it was told; 0: it does not exist
};

struct FocuserState {
    bool isThere = false;     // and can be told to connect
    bool isConnected = false; // to its device
    bool hasGone = false;     // with its server
    FocuserNumber relative;
    FocuserNumber absolute;
};

class IndiClient : public INDI::BaseClient {
public:
    explicit IndiClient(std::string device) : device_(std::move(device)) {}
    ~IndiClient() override;

    FocuserState state() const;

    // Waits until `condition` holds of the state, the server has gone or the time has come; whether it holds.
    template <class Condition>
    bool waitFor(std::chrono::milliseconds limit, Condition condition)
    {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, limit, [&] { return state_.hasGone || condition(state_); });
        return condition(state_);
    }

    // Asks for a move, outward when positive.
    void sendMove(std::int64_t steps);

protected:
    void newProperty(INDI::Property property) override;
    void updateProperty(INDI::Property property) override;
    void serverDisconnected(int code) override;

private:
    const std::string device_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    FocuserState state_;
};

} // namespace tesmor::drive
