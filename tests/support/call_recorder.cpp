// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/call_recorder.h"

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

void CallRecorder::record(const Call& call)
{
    {
        std::lock_guard guard(mutex_);
        calls_.push_back(call);
    }
    if (then)
        then(call);
}

} // namespace tesmor::test
