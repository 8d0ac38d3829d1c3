#ifndef VORN_SIM_CLOCKCALLS_H
#define VORN_SIM_CLOCKCALLS_H

#include <csignal>
#include <ctime>

#include <poll.h>
#include <sys/types.h>

namespace Vorn::Sim {

/// Receives the process's clock and poll calls while its clocks are virtual. Each function returns
/// whether it served the call, and sets the result (and `errno`) only if it did.
class ClockCalls
{
public:
    virtual ~ClockCalls() = default;

    /// The arguments of a `poll` or `ppoll`.
    struct Poll
    {
        pollfd *fds;
        nfds_t count;
        /// Null to wait indefinitely.
        const timespec *timeout;
        const sigset_t *mask;
        /// The address that the call returns to.
        const void *caller;
    };

    virtual bool get(clockid_t clock, timespec &result) = 0;
    virtual bool poll(const Poll &call, int &result) = 0;
};

/// Offers clock and poll calls to @p calls from now on; null to leave them alone.
void serveClocks(ClockCalls *calls);

/// Who is offered clock and poll calls; null for nobody.
ClockCalls *clockCalls();

} // namespace Vorn::Sim

#endif
