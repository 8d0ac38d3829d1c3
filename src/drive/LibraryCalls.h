#ifndef VORN_DRIVE_LIBRARYCALLS_H
#define VORN_DRIVE_LIBRARYCALLS_H

#include <QString>

namespace Vorn::Drive {

/// Makes the library's calls of its own handlers come by the ProgramObserver, as the program's
/// calls of the library do by themselves.
/// @return why it cannot be done; empty if it is
QString watchLibrary();

} // namespace Vorn::Drive

#endif
