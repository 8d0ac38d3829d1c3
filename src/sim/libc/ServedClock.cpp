#include "ServedClock.h"

#include <algorithm>

namespace Vorn::Sim {

bool serveClock(clockid_t clock, ClockReading &result)
{
    const ClockCallsUse calls = useClockCalls();
    std::chrono::nanoseconds time{};
    if (!calls || !calls->get(clock, time))
        return false;
    // Rounds down, even before the epoch.
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    result.seconds = seconds.count();
    result.nanoseconds = static_cast<std::int32_t>((time - seconds).count());
    return true;
}

bool servePoll(const ClockCalls::Poll &call, int &result)
{
    const ClockCallsUse calls = useClockCalls();
    return calls && calls->poll(call, result);
}

std::chrono::nanoseconds pollTimeout(std::int64_t seconds, long nanoseconds)
{
    constexpr std::int64_t century = 100LL * 366 * 24 * 3600;
    return std::chrono::seconds(std::min(seconds, century)) + std::chrono::nanoseconds(nanoseconds);
}

} // namespace Vorn::Sim
