#ifndef VORN_SIM_CLOCKCALLS_H
#define VORN_SIM_CLOCKCALLS_H

#include "CallReceiver.h"

#include <chrono>
#include <csignal>
#include <ctime>
#include <optional>

#include <poll.h>
#include <sys/types.h>

namespace Vorn::Sim {

/// Receives the process's clock and poll calls while its clocks are virtual. Each function returns
/// whether it served the call, and sets the result (and `errno`) only if it did.
///
/// Times are durations, because 32-bit systems have two kinds of `timespec`, and callers of both.
class ClockCalls
{
public:
    virtual ~ClockCalls() = default;

    /// The arguments of a `poll` or `ppoll`.
    struct Poll
    {
        pollfd *fds;
        nfds_t count;
        /// None to wait indefinitely.
        std::optional<std::chrono::nanoseconds> timeout;
        const sigset_t *mask;
        /// The address that the call returns to.
        const void *caller;
    };

    virtual bool get(clockid_t clock, std::chrono::nanoseconds &result) = 0;
    virtual bool poll(const Poll &call, int &result) = 0;
};

/// Offers clock and poll calls to @p calls from now on; null to leave them alone.
void serveClocks(ClockCalls *calls);

/// Waits until the last call has left whoever was offered it before.
void awaitClockCallers();

/// Who is offered clock and poll calls at the moment; null for nobody.
ClockCalls *clockCalls();

/// Not kept beyond the call that is served: whoever wants to go waits for its end.
using ClockCallsUse = CallReceiver<ClockCalls>::Use;

/// The same as clockCalls() for the length of a call.
ClockCallsUse useClockCalls();

} // namespace Vorn::Sim

#endif
