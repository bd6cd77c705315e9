// SPDX-License-Identifier: GPL-2.0-or-later
// The drive units and the clock of a test: a device that answers as it is told to and writes down all that it is asked,
// and a time that passes only in waits and sleeps.
#pragma once

#include "platform/clock.h"
#include "platform/drive_device.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <numeric>
#include <set>
#include <string>
#include <vector>

namespace tesmor::test {

// The log's lines: "exists U", "open U", "request HEX", "reset", "read MS", "sleep MS", "close".
class ScriptedSystem final : public platform::DriveUnits, public platform::Clock {
public:
    static constexpr std::size_t NEVER = SIZE_MAX;

    // The device as new: these units, no faults, an empty log.
    void reset(const std::set<unsigned>& units = {});

    std::set<unsigned> existingUnits;
    std::set<unsigned> openingUnits;
    bool refuseOpenRequest = false;
    std::size_t goodMoves = NEVER; // so many moves work first,
    int refusals = 0;              // then so many sends are refused,
    int missingAcks = 0;           // and then so many acknowledgements stay away
    std::function<void()> inMove;  // runs inside every move that is accepted

    // Waits for an event take a millisecond of ours each. Whether they take theirs for the library:
    std::atomic<bool> timePasses{false};
    std::function<void()> inWait; // runs at the beginning of every wait for an event

    // May be called from another thread.
    std::vector<std::string> log() const
    {
        return locked(log_);
    }
    // The moves that were accepted, as signed steps; a reverse move of 0 steps is 0.
    std::vector<std::int32_t> moves() const
    {
        return locked(moves_);
    }
    bool isOpen() const
    {
        return locked(isOpen_);
    }
    // How long the library would have waited for the device: vain reads and sleeps, milliseconds.
    std::uint64_t waitedForDevice() const
    {
        return locked(waitedForDevice_);
    }

    // Where the moves have led to.
    std::int64_t position() const
    {
        const auto all = moves();
        return std::accumulate(all.begin(), all.end(), std::int64_t{0});
    }

    bool exists(unsigned unit) noexcept override;
    std::unique_ptr<platform::DriveDevice> open(unsigned unit) noexcept override;
    std::uint32_t tickMilliseconds() noexcept override;
    void sleepMilliseconds(std::uint32_t milliseconds) noexcept override;
    bool waitFor(platform::Event& event, std::uint32_t milliseconds) noexcept override;

private:
    class Device;

    template <class Value>
    Value locked(const Value& value) const
    {
        std::lock_guard guard(mutex_);
        return value;
    }

    void record(const std::string& line);
    bool acceptRequest(const std::vector<std::uint8_t>& request);

    mutable std::recursive_mutex mutex_;
    std::vector<std::string> log_;
    std::vector<std::int32_t> moves_;
    std::uint64_t waitedForDevice_ = 0;
    bool isOpen_ = false;
    std::atomic<std::uint32_t> now_{0xFFFFF000}; // wraps within a wait for a frame
};

} // namespace tesmor::test
