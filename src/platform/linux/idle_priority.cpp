// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/idle_priority.h"

#include <cerrno>
#include <sched.h>
#include <sys/resource.h>

namespace tesmor::platform {

namespace {

constexpr id_t CALLING_THREAD = 0;
constexpr int HIGHEST_NICE = -20;
constexpr int LOWEST_NICE = 19;

bool setScheduling(int policy, int priority) noexcept
{
    const sched_param parameters{priority};
    return sched_setscheduler(CALLING_THREAD, policy, &parameters) == 0;
}

rlim_t limitOf(decltype(RLIMIT_NICE) resource) noexcept
{
    rlimit limit{};
    return getrlimit(resource, &limit) == 0 ? limit.rlim_cur : 0;
}

bool limitAllowsNice(int nice) noexcept
{
    return limitOf(RLIMIT_NICE) >= static_cast<rlim_t>(LOWEST_NICE + 1 - nice);
}

bool limitAllowsRealTime(int priority) noexcept
{
    return limitOf(RLIMIT_RTPRIO) >= static_cast<rlim_t>(priority);
}

// Whether the system lets the thread rise beyond the limits of its process. Found out by a step up that only this right
// allows, and a step down, which is always allowed: a thread without it loses nothing.
bool mayPassLimits(const NativePriority& kept, int nice) noexcept
{
    if (nice > HIGHEST_NICE && !limitAllowsNice(HIGHEST_NICE)) {
        return setpriority(PRIO_PROCESS, CALLING_THREAD, HIGHEST_NICE) == 0 &&
               setpriority(PRIO_PROCESS, CALLING_THREAD, nice) == 0;
    }
    const int highest = sched_get_priority_max(SCHED_FIFO);
    return kept.priority < highest && !limitAllowsRealTime(highest) &&
           setScheduling(SCHED_FIFO | kept.inheritance, highest) &&
           setScheduling(kept.policy | kept.inheritance, kept.priority);
}

// The lowest policy from which the thread may come back to `kept`; `kept`'s own where there is none.
int lowestPolicy(const NativePriority& kept) noexcept
{
    const bool realTime = kept.policy == SCHED_FIFO || kept.policy == SCHED_RR;
    if (!realTime && kept.policy != SCHED_OTHER && kept.policy != SCHED_BATCH)
        return kept.policy;
    errno = 0;
    const int nice = getpriority(PRIO_PROCESS, CALLING_THREAD);
    if (errno != 0)
        return kept.policy;
    const bool limitsAllowReturn = !realTime || limitAllowsRealTime(kept.priority);
    const bool limitsAllowIdle = limitAllowsNice(nice);
    if ((limitsAllowReturn && limitsAllowIdle) || mayPassLimits(kept, nice))
        return SCHED_IDLE;
    return limitsAllowReturn ? SCHED_BATCH : kept.policy;
}

NativePriority presentPriority() noexcept
{
    sched_param parameters{};
    const int policy = sched_getscheduler(CALLING_THREAD);
    sched_getparam(CALLING_THREAD, &parameters);
    return {policy & ~SCHED_RESET_ON_FORK, policy & SCHED_RESET_ON_FORK, parameters.sched_priority, false};
}

} // namespace

IdlePriority::IdlePriority() noexcept : kept_(presentPriority())
{
    const int policy = lowestPolicy(kept_);
    kept_.lowered = policy != kept_.policy && setScheduling(policy | kept_.inheritance, 0);
}

IdlePriority::~IdlePriority()
{
    if (kept_.lowered)
        setScheduling(kept_.policy | kept_.inheritance, kept_.priority);
}

} // namespace tesmor::platform
