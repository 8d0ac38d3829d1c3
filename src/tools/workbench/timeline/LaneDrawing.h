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

    void drawHeadings(const PlacedRow &row);
    /// The lanes' names, their bars, and what is beside or behind them.
    void drawBars(const PlacedRow &row);
    /// Connects the lanes of chords with those of their keys.
    void drawLinks(const PlacedRow &row);
    /// The marks on the bars, and lines from the bars to the events.
    void drawMarks(const PlacedRow &row);
    void drawEvents(const PlacedRow &row);

private:
    void drawName(const PlacedLane &placed);
    void drawBar(const PlacedRow &row, const PlacedLane &placed, const TimelineBar &bar);
    void drawTimed(const PlacedRow &row, const PlacedLane &placed);
    void drawLateness(const PlacedRow &row, const PlacedLane &placed);
    void drawMark(const PlacedLane &placed, const TimelineMark &mark, double x);
    void drawLeaders(const PlacedLane &placed);
    void drawEvent(const PlacedLane &placed, const PlacedEvent &event);

    TimelineCanvas *const m_canvas;
    TimelineSvg &m_svg;
};

} // namespace Vorn::Workbench

#endif
