#ifndef VORN_WORKBENCH_TIMELINECANVAS_H
#define VORN_WORKBENCH_TIMELINECANVAS_H

#include "TimelineLayout.h"
#include "TimelineModel.h"
#include "TimelineSvg.h"
#include "TimelineSymbols.h"

#include <QString>

namespace Vorn::Workbench {

/// More elements than that neither make a useful picture nor are quick to show.
constexpr int maxTimelineMarks = 20'000;

/// What all parts of a timeline are drawn from and to.
struct TimelineCanvas
{
    const TimelineModel &model;
    const TimelineLayout &layout;
    TimelineSvg &svg;
    int marks = 0;
    int marksLeftOut = 0;

    const TimelineAxis &axis() const { return layout.axis; }

    /// Whether there is room for one more element, which is then counted; counts those left out,
    /// too.
    bool mayMark();

    void symbol(double x, double y, const TimelineSymbol &symbol, const QString &title = QString());
};

} // namespace Vorn::Workbench

#endif
