// Remembers what the library called the host with.
#pragma once

#include <condition_variable>
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

    // Waits, ten seconds at most, and returns the calls so far.
    std::vector<Call> waitForCalls(std::size_t count) const;

private:
    void record(const Call& call);

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::vector<Call> calls_;
};

} // namespace tesmor::test
