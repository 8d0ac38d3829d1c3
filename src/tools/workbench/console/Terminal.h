#ifndef VORN_WORKBENCH_TERMINAL_H
#define VORN_WORKBENCH_TERMINAL_H

namespace Vorn::Workbench {

/// When output is coloured.
enum class Colour { Auto, Always, Never };

/// Whether to colour output to @p descriptor. `Auto` means on a terminal, unless NO_COLOR is set or
/// TERM is not set or "dumb".
bool isColoured(Colour colour, int descriptor);

/// Whether a terminal, if there is one, is of a kind that colours and moves its cursor.
bool understandsSequences();

/// Whether a descriptor is a terminal.
bool isTerminal(int descriptor);

} // namespace Vorn::Workbench

#endif
