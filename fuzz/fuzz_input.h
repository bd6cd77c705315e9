// SPDX-License-Identifier: GPL-2.0-or-later
// Takes a fuzzer's bytes apart; past the end everything is 0.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace tesmor::fuzz {

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

    bool isEmpty() const
    {
        return rest_.empty();
    }

    std::uint8_t byte()
    {
        const auto taken = bytes(1);
        return taken.empty() ? std::uint8_t{0} : taken[0];
    }

    std::uint16_t word()
    {
        const unsigned low = byte();
        return static_cast<std::uint16_t>(low | unsigned{byte()} << 8);
    }

    // At most `count`.
    std::span<const std::uint8_t> bytes(std::size_t count)
    {
        const auto taken = rest_.first(std::min(count, rest_.size()));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }

private:
    std::span<const std::uint8_t> rest_;
};

// Ends the run as a finding.
inline void require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

} // namespace tesmor::fuzz
