// SPDX-License-Identifier: GPL-2.0-or-later
// Remembers what the library called the host with.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tesmor::test {

struct Call {
    const std::uint8_t* image;
    std::int32_t width;
    std::int32_t height;
    std::int32_t result;

    bool operator==(const Call&) const = default;
};

constexpr Call report(std::int32_t result)
{
    return {nullptr, 0, 0, result};
}

// Pass its address as the context. Callbacks may come from any thread.
class CallRecorder {
public:
    static void onDone(void* context, std::int32_t result);
    static void onFrame(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context,
                        std::int32_t result);

    // Runs inside every callback, after the call has been remembered.
    std::function<void(const Call&)> then;

    std::vector<Call> calls() const;

private:
    void record(const Call& call);

    mutable std::mutex mutex_;
    std::vector<Call> calls_;
};

} // namespace tesmor::test
