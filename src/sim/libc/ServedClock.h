#ifndef VORN_SIM_SERVEDCLOCK_H
#define VORN_SIM_SERVEDCLOCK_H

#include "ClockCalls.h"

#include <chrono>
#include <cstdint>

namespace Vorn::Sim {

/// A clock's time, for whichever structure the caller has.
struct ClockReading
{
    std::int64_t seconds = 0;
    std::int32_t nanoseconds = 0;
};

/// Whether @p clock is served; its time is in @p result then.
bool serveClock(clockid_t clock, ClockReading &result);

/// Whether @p call is served; its result is in @p result then.
bool servePoll(const ClockCalls::Poll &call, int &result);

/// The timeout of a `ppoll`, but no more than a century.
std::chrono::nanoseconds pollTimeout(std::int64_t seconds, long nanoseconds);

} // namespace Vorn::Sim

#endif
