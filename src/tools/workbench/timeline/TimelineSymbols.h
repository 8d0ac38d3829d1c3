#ifndef VORN_WORKBENCH_TIMELINESYMBOLS_H
#define VORN_WORKBENCH_TIMELINESYMBOLS_H

#include "Input.h"

namespace Vorn::Workbench {

/// An SVG path around (0, 0) and the class that gives it its colour.
struct TimelineSymbol
{
    const char *path;
    const char *cssClass;
};

/// The symbols of a timeline, the same in its lanes and in its legend.
namespace Symbols {
constexpr TimelineSymbol press{"M-4.5-4h9l-4.5 8z", "press"};
constexpr TimelineSymbol release{"M-4.5 4h9l-4.5-8z", "release"};
/// Tip to tip, for a press and a release at the same moment.
constexpr TimelineSymbol clickPress{"M-4.5-5.5h9l-4.5 5.5z", "press"};
constexpr TimelineSymbol clickRelease{"M-4.5 5.5h9l-4.5-5.5z", "release"};
constexpr TimelineSymbol longPress{"M0-5l5 5l-5 5l-5-5z", "long-press"};
constexpr TimelineSymbol on{"M-4-4h8v8h-8z", "on"};
constexpr TimelineSymbol off{on.path, "off"};
constexpr TimelineSymbol noState{on.path, "release"};
constexpr TimelineSymbol withdrawn{"M-4.5-4.5l9 9m0-9l-9 9", "withdrawn"};
constexpr TimelineSymbol forgotten{"M-4.5-4.5l9 9m0-9l-9 9", "forgotten"};
constexpr TimelineSymbol dropped{"M-4.5 0a4.5 4.5 0 1 0 9 0a4.5 4.5 0 1 0-9 0z", "dropped"};
constexpr TimelineSymbol linkEnd{dropped.path, "link-end"};
constexpr TimelineSymbol due{"M0-8l8 3.5l-8 3.5z", "flag"};
} // namespace Symbols

/// The symbol of a published event.
TimelineSymbol symbolOf(InputEvent::State state);

} // namespace Vorn::Workbench

#endif
