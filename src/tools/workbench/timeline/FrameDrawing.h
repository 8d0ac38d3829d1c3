#ifndef VORN_WORKBENCH_FRAMEDRAWING_H
#define VORN_WORKBENCH_FRAMEDRAWING_H

#include "TimelineCanvas.h"

#include <QString>

namespace Vorn::Workbench {

/// Draws what surrounds the lanes of a timeline and what runs through all of them: the heading, the
/// identifiers, the axis with its breaks, and the flags.
class FrameDrawing
{
public:
    /// @param canvas must live longer
    explicit FrameDrawing(TimelineCanvas *canvas);

    /// @param part which session of a file this is, "session 2 of 3"; may be empty
    void drawHeading(const QString &title, const QString &part);
    void drawIdentifiers(const PlacedRow &row);
    /// The grid, and the stripes behind every other lane.
    void drawAxis(const PlacedRow &row);
    void drawTickLabels(const PlacedRow &row);
    void drawFlags(const PlacedRow &row);
    void drawBreaks(const PlacedRow &row);
    /// What had to be left out of the picture.
    void drawNotes();

private:
    TimelineCanvas *const m_canvas;
    TimelineSvg &m_svg;
    const TimelineLayout &m_layout;
};

} // namespace Vorn::Workbench

#endif
