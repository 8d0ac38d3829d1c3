#include "Session.h"

#include <tuple>

namespace Vorn::Workbench {

namespace {

auto members(const KeyState &state)
{
    return std::tie(state.code, state.isDown, state.isWithdrawn, state.isHeld, state.isCounting,
                    state.count, state.due);
}

auto members(const KeyStates &states)
{
    return std::tie(states.device, states.hasHandler, states.isChord, states.keys);
}

} // namespace

bool operator==(const KeyState &one, const KeyState &other)
{
    return members(one) == members(other);
}

bool operator==(const KeyStates &one, const KeyStates &other)
{
    return members(one) == members(other);
}

} // namespace Vorn::Workbench
