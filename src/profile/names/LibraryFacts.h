#ifndef VORN_PROFILE_LIBRARYFACTS_H
#define VORN_PROFILE_LIBRARYFACTS_H

/// What the workbench has to know about the library and no header of the library says. Each fact is
/// stated here and nowhere else, and LibraryFactsTest holds each against the library.
namespace Vorn {

/// Period in ms at which the library checks whether a long press is due.
constexpr int tickMs = 50;

/// The library reads /dev/input/event0 up to the one below this number.
constexpr int nodeCount = 10;

/// The kernel name that puts a device on the bus `Hostlink`, whichever bus the kernel reports.
constexpr char hostlinkName[] = "hostlink";

/// The library can ask for the positions of switches with codes below this.
constexpr int positionCodes = 16;

/// @name Sizes of the library's requests, in bytes
/// A recording answers a request of a recorded size only.
/// @{
constexpr int scanNameBytes = 255; ///< EVIOCGNAME, when it looks for devices
constexpr int listenerNameBytes = 256; ///< EVIOCGNAME, when it starts to read one
constexpr int typeBytes = 31; ///< EVIOCGBIT(0)
constexpr int stateBytes = 4; ///< EVIOCGKEY and EVIOCGSW
/// @}

} // namespace Vorn

#endif
