// Takes the place of the platform's drive device: answers as a test tells it to and writes down all that it is asked.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <numeric>
#include <set>
#include <string>
#include <vector>

namespace tesmor::test {

// The log's lines: "exists U", "open U", "request HEX", "reset", "read MS", "sleep MS", "close".
class ScriptedDevice {
public:
    static constexpr std::size_t NEVER = SIZE_MAX;

    // Everything as new: these units, no faults, an empty log.
    void reset(const std::set<unsigned>& units = {});

    void record(const std::string& line);
    auto log() const
    {
        return locked(log_);
    }

    // The moves that were accepted, as signed steps; a reverse move of 0 steps is 0.
    auto moves() const
    {
        return locked(moves_);
    }

    std::int64_t position() const
    {
        const auto all = moves();
        return std::accumulate(all.begin(), all.end(), std::int64_t{0});
    }

    bool isOpen() const
    {
        return locked(isOpen_);
    }

    std::set<unsigned> existingUnits;
    std::set<unsigned> openingUnits;
    bool refuseOpenRequest = false;
    std::size_t goodMoves = NEVER; // so many moves work first,
    int refusals = 0;              // then so many sends are refused,
    int missingAcks = 0;           // and then so many acknowledgements stay away
    std::function<void()> inMove;  // runs inside every move that is accepted

    // How long the library would have waited for this device: vain reads and sleeps, milliseconds.
    auto waited() const
    {
        return locked(waited_);
    }

    // Called by the seam.
    bool open(unsigned unit);
    bool control(std::uint32_t code, const std::vector<std::uint8_t>& input);
    bool readByte(std::uint32_t timeoutMs);
    void close();
    void sleep(std::uint32_t milliseconds);

private:
    template <class Value>
    Value locked(const Value& value) const
    {
        std::lock_guard guard(mutex_);
        return value;
    }

    bool acceptMove(std::uint16_t direction, std::uint16_t steps);

    mutable std::recursive_mutex mutex_;
    std::vector<std::string> log_;
    std::vector<std::int32_t> moves_;
    std::uint64_t waited_ = 0;
    bool isOpen_ = false;
};

inline ScriptedDevice device;

} // namespace tesmor::test
