#ifndef VORN_SIM_STATUSFUNCTIONS_H
#define VORN_SIM_STATUSFUNCTIONS_H

namespace Vorn::Sim {

/// Which of the replacements of `stat` and its relatives other libraries do not get; null if they
/// get them all.
const char *missingStatusFunction();

} // namespace Vorn::Sim

#endif
