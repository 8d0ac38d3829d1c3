#ifndef VORN_WORKBENCH_LIBRARYFACTS_H
#define VORN_WORKBENCH_LIBRARYFACTS_H

/// What the workbench has to know of the library that no header of the library says. Each fact is
/// stated here once; tests hold each against the library itself.
namespace Vorn::Workbench {

/// Period in ms at which the library checks whether a long press is due.
constexpr int tickMs = 50;

/// How late a tick may be in ms: Qt's coarse timers are off by up to 5 %.
constexpr int tickToleranceMs = 5;

/// The library looks at /dev/input/event0 to event9.
constexpr int nodeCount = 10;

/// The kernel name of the one device on the bus Hostlink, whatever bus the kernel reports.
constexpr char hostlinkName[] = "hostlink";

/// Switches whose positions the library can ask for have codes below this.
constexpr int positionCodes = 16;

/// Bytes of event types that the library asks a node for.
constexpr int typeBytes = 31;

} // namespace Vorn::Workbench

#endif
