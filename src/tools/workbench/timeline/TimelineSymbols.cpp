#include "TimelineSymbols.h"

namespace Vorn::Workbench {

TimelineSymbol symbolOf(InputEvent::State state)
{
    switch (state) {
    case InputEvent::KeyPressed:
        return Symbols::press;
    case InputEvent::KeyReleased:
        return Symbols::release;
    case InputEvent::KeyLongPress:
        return Symbols::longPress;
    case InputEvent::SwitchEnabled:
        return Symbols::on;
    case InputEvent::SwitchDisabled:
        return Symbols::off;
    case InputEvent::NoState:
        break;
    }
    // A session file may contain any state, so this must not be mistaken for a switch.
    return Symbols::noState;
}

} // namespace Vorn::Workbench
