#include "Interposition.h"

#include "ClockFunctions.h"
#include "DescriptorFunctions.h"
#include "DuplicateFunctions.h"
#include "InterposedFunction.h"
#include "PathFunctions.h"
#include "StatusFunctions.h"
#include "Time64Functions.h"

// The linker takes this file out of the archive for this symbol, and the other replacements for
// the calls below. An undefined `open` alone would not do: where a sanitizer's runtime comes first
// on the command line, it is already defined when the archive's turn comes.
VORN_SIM_INTERPOSED const int vorn_sim_interposition;
const int vorn_sim_interposition = 1;

namespace Vorn::Sim {

const char *missingInterposition()
{
    for (const auto &missingFunction :
         {missingDescriptorFunction, missingDuplicateFunction, missingPathFunction,
          missingStatusFunction, missingClockFunction, missingTime64Function})
    {
        if (const char *name = missingFunction())
            return name;
    }
    return nullptr;
}

} // namespace Vorn::Sim
