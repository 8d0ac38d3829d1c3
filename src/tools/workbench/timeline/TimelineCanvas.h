#ifndef VORN_WORKBENCH_TIMELINECANVAS_H
#define VORN_WORKBENCH_TIMELINECANVAS_H

#include "TimelineLayout.h"
#include "TimelineModel.h"
#include "TimelineSvg.h"
#include "TimelineSymbols.h"

#include <QString>

namespace Vorn::Workbench {

/// What all parts of a timeline are drawn from and to.
struct TimelineCanvas
{
    const TimelineModel &model;
    const TimelineLayout &layout;
    TimelineSvg &svg;

    void symbol(double x, double y, const TimelineSymbol &symbol, const QString &title = QString())
    {
        svg.shape(x, y, symbol.path, symbol.cssClass, title);
    }
};

} // namespace Vorn::Workbench

#endif
