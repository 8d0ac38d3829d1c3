#include "TimelineCanvas.h"

namespace Vorn::Workbench {

bool TimelineCanvas::mayMark()
{
    if (marks < maxTimelineMarks) {
        ++marks;
        return true;
    }
    ++marksLeftOut;
    return false;
}

void TimelineCanvas::symbol(double x, double y, const TimelineSymbol &symbol, const QString &title)
{
    svg.shape(x, y, symbol.path, symbol.cssClass, title);
}

} // namespace Vorn::Workbench
