#include "ScriptedFailure.h"

namespace Vorn::Sim {

int ScriptedFailure::next()
{
    if (times == 0)
        return 0;
    if (after > 0) {
        --after;
        return 0;
    }
    if (times > 0)
        --times;
    return error;
}

} // namespace Vorn::Sim
