#ifndef VORN_WORKBENCH_LEGENDDRAWING_H
#define VORN_WORKBENCH_LEGENDDRAWING_H

#include "TimelineCanvas.h"

namespace Vorn::Workbench {

/// Explains the symbols and colours that occur in the picture.
void drawLegend(TimelineCanvas *canvas);

} // namespace Vorn::Workbench

#endif
