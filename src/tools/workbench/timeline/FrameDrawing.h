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

    void drawHeading(const QString &title);
    void drawIdentifiers();
    /// The grid, and the stripes behind every other lane.
    void drawAxis();
    void drawTickLabels();
    void drawFlags();
    void drawBreaks();
    /// What had to be left out of the picture.
    void drawNotes();

private:
    TimelineCanvas *const m_canvas;
    TimelineSvg &m_svg;
    const TimelineLayout &m_layout;
    const TimelineAxis &m_axis;
};

} // namespace Vorn::Workbench

#endif
