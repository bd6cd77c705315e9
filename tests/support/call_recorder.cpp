#include "support/call_recorder.h"

#include <chrono>

namespace tesmor::test {

void CallRecorder::onDone(void* context, std::int32_t result)
{
    static_cast<CallRecorder*>(context)->record(report(result));
}

void CallRecorder::onFrame(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context,
                           std::int32_t result)
{
    static_cast<CallRecorder*>(context)->record({image, width, height, result});
}

std::vector<Call> CallRecorder::calls() const
{
    std::lock_guard guard(mutex_);
    return calls_;
}

std::vector<Call> CallRecorder::waitForCalls(std::size_t count) const
{
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, std::chrono::seconds(10), [&] { return calls_.size() >= count; });
    return calls_;
}

void CallRecorder::record(const Call& call)
{
    {
        std::lock_guard guard(mutex_);
        calls_.push_back(call);
        changed_.notify_all();
    }
    if (then)
        then(call);
}

} // namespace tesmor::test
