#ifndef VORN_WORKBENCH_LANEDRAWING_H
#define VORN_WORKBENCH_LANEDRAWING_H

#include "TimelineCanvas.h"

namespace Vorn::Workbench {

/// Draws the lanes of a timeline, in layers: lines that lead from one lane to another are above the
/// bars of all lanes, and below the labels.
class LaneDrawing
{
public:
    /// @param canvas must live longer
    explicit LaneDrawing(TimelineCanvas *canvas);

    /// The lane's name, its bars, and what is beside or behind them.
    void drawBars(const PlacedLane &placed);
    /// Connects the lanes of chords with those of their keys.
    void drawLinks();
    /// The marks on the bars, and lines from the bars to the events.
    void drawMarks(const PlacedLane &placed);
    void drawEvents(const PlacedLane &placed);

private:
    void drawName(const PlacedLane &placed);
    void drawBar(const PlacedLane &placed, const TimelineBar &bar);
    void drawTicks(const PlacedLane &placed);
    void drawLateness(const PlacedLane &placed);
    void drawMark(const PlacedLane &placed, const TimelineMark &mark);
    void drawLeaders(const PlacedLane &placed);

    TimelineCanvas *const m_canvas;
    TimelineSvg &m_svg;
    const TimelineLayout &m_layout;
    const TimelineAxis &m_axis;
    int m_leaders = 0;
};

} // namespace Vorn::Workbench

#endif
