#ifndef VORN_SIM_INTERPOSITION_H
#define VORN_SIM_INTERPOSITION_H

namespace Vorn::Sim {

/// The name of a C library function that is not replaced in this process, as other libraries see
/// it; null if all are.
const char *missingInterposition();

} // namespace Vorn::Sim

#endif
