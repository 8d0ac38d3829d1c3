#include "ClockCalls.h"

namespace Vorn::Sim {

namespace {

CallReceiver<ClockCalls> receiver;

} // namespace

void serveClocks(ClockCalls *calls)
{
    receiver.set(calls);
}

void awaitClockCallers()
{
    receiver.awaitCallers();
}

ClockCalls *clockCalls()
{
    return receiver.get();
}

ClockCallsUse useClockCalls()
{
    return ClockCallsUse(&receiver);
}

} // namespace Vorn::Sim
