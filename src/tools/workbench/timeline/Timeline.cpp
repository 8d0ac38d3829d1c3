#include "Timeline.h"

#include "FrameDrawing.h"
#include "LaneDrawing.h"
#include "LegendDrawing.h"
#include "TimelineCanvas.h"
#include "TimelineCollector.h"
#include "TimelineLayout.h"
#include "TimelineSvg.h"
#include "TimelineText.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

QString titleOf(const TimelineModel &model, const TimelineOptions &options)
{
    if (!options.title.isEmpty())
        return options.title;
    return model.start.source.isEmpty() ? QStringLiteral("session") : model.start.source;
}

QString description(const TimelineModel &model, const TimelineLayout &layout)
{
    int events = 0;
    for (const PlacedLane &lane : layout.lanes)
        events += lane.events.size();
    const bool hasFailures =
        std::any_of(layout.flags.begin(), layout.flags.end(), [](const PlacedFlag &placed) {
            return placed.flag.kind == TimelineFlag::Kind::Failure;
        });
    QString text = QStringLiteral("%1 and %2 from %3 to %4.")
                       .arg(counted(layout.lanes.size(), "lane"), counted(events, "event"),
                            timelineTime(layout.axis.from()), timelineTime(layout.axis.to()));
    if (hasFailures)
        text += QStringLiteral(" Expectations failed.");
    if (!model.start.profile.isEmpty())
        text += QStringLiteral(" Profile: %1.").arg(model.start.profile);
    return text;
}

} // namespace

QByteArray timelineSvg(const QVector<SessionEntry> &entries, const TimelineOptions &options)
{
    const TimelineModel model = timelineModel(entries);
    const TimelineLayout layout(model, options);
    const QString title = titleOf(model, options);
    TimelineSvg svg(layout.width, layout.height, title, description(model, layout));
    TimelineCanvas canvas{model, layout, svg};
    FrameDrawing frame(&canvas);
    LaneDrawing lanes(&canvas);

    // From back to front: later elements cover earlier ones. Breaks cover the bars that they
    // interrupt, and nothing covers a label.
    frame.drawHeading(title);
    frame.drawAxis();
    for (const PlacedLane &placed : layout.lanes)
        lanes.drawBars(placed);
    frame.drawBreaks();
    frame.drawIdentifiers();
    frame.drawFlags();
    frame.drawTickLabels();
    lanes.drawLinks();
    for (const PlacedLane &placed : layout.lanes)
        lanes.drawMarks(placed);
    for (const PlacedLane &placed : layout.lanes)
        lanes.drawEvents(placed);
    drawLegend(&canvas);
    frame.drawNotes();
    return svg.finished();
}

QByteArray timelineSignature()
{
    return QByteArray("<!--") + pictureComment + "-->";
}

} // namespace Vorn::Workbench
