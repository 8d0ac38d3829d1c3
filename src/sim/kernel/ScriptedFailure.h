#ifndef VORN_SIM_SCRIPTEDFAILURE_H
#define VORN_SIM_SCRIPTEDFAILURE_H

namespace Vorn::Sim {

/// A failure that a test asked for.
struct ScriptedFailure
{
    int error = 0;
    /// How many calls fail; negative for all of them.
    int times = 0;
    /// How many calls succeed before that.
    int after = 0;

    /// Counts one call.
    /// @return the error that it fails with; 0 for none
    int next();
};

} // namespace Vorn::Sim

#endif
