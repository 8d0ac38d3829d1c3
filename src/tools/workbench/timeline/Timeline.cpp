#include "Timeline.h"

#include "FrameDrawing.h"
#include "LaneDrawing.h"
#include "LegendDrawing.h"
#include "TimelineCanvas.h"
#include "TimelineCollector.h"
#include "TimelineLayout.h"
#include "TimelineSvg.h"
#include "TimelineText.h"

#include <QSet>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

QString titleOf(const TimelineModel &model, const TimelineOptions &options)
{
    if (!options.title.isEmpty())
        return options.title;
    return model.start.source.isEmpty() ? QStringLiteral("session") : model.start.source;
}

int countOfEvents(const TimelineModel &model)
{
    int count = 0;
    for (const TimelineLane &lane : model.lanes) {
        count += static_cast<int>(
            std::count_if(lane.events.begin(), lane.events.end(), [&](const TimelineEvent &event) {
                return event.time >= model.shown.from && event.time <= model.shown.to;
            }));
    }
    return count;
}

int countOfLanes(const TimelineLayout &layout)
{
    // A lane is in every row in which something happens in it.
    QSet<int> lanes;
    for (const PlacedRow &row : layout.rows) {
        for (const PlacedLane &lane : row.lanes)
            lanes.insert(lane.index);
    }
    return static_cast<int>(lanes.size());
}

QString description(const TimelineModel &model, const TimelineLayout &layout)
{
    const bool hasFailures =
        std::any_of(layout.rows.begin(), layout.rows.end(), [](const PlacedRow &row) {
            return std::any_of(row.flags.begin(), row.flags.end(), [](const PlacedFlag &placed) {
                return placed.flag.kind == TimelineFlag::Kind::Failure;
            });
        });
    QString text =
        QStringLiteral("%1 and %2 from %3 to %4.")
            .arg(counted(countOfLanes(layout), "lane"), counted(countOfEvents(model), "event"),
                 timelineTime(model.shown.from), timelineTime(model.shown.to));
    if (hasFailures)
        text += QStringLiteral(" Expectations failed.");
    if (!model.start.profile.isEmpty())
        text += QStringLiteral(" Profile: %1.").arg(model.start.profile);
    return text;
}

TimelineSpan wantedBy(const TimelineOptions &options)
{
    return {options.from.value_or(wholeSession.from), options.to.value_or(wholeSession.to)};
}

} // namespace

Timeline::Timeline(const TimelineOptions &options)
    : m_options(options)
    , m_collector(std::make_unique<TimelineCollector>(wantedBy(options)))
{ }

Timeline::~Timeline() = default;

void Timeline::add(const SessionEntry &entry)
{
    m_collector->add(entry);
}

void Timeline::extendTo(qint64 end)
{
    m_collector->extendTo(end);
}

TimelineSpan Timeline::session() const
{
    return m_collector->session();
}

bool Timeline::isEmpty() const
{
    return m_collector->isEmpty();
}

QByteArray Timeline::svg(const QString &part)
{
    const TimelineModel model = m_collector->finished();
    const TimelineLayout layout(model);
    const QString title = titleOf(model, m_options);
    TimelineSvg svg(layout.width, layout.height, title, description(model, layout));
    TimelineCanvas canvas{model, layout, svg};
    FrameDrawing frame(&canvas);
    LaneDrawing lanes(&canvas);

    frame.drawHeading(title, part);
    for (const PlacedRow &row : layout.rows) {
        // From back to front: later elements cover earlier ones. Breaks cover the bars that they
        // interrupt, and nothing covers a label.
        frame.drawAxis(row);
        lanes.drawHeadings(row);
        lanes.drawBars(row);
        frame.drawBreaks(row);
        frame.drawIdentifiers(row);
        frame.drawFlags(row);
        frame.drawTickLabels(row);
        lanes.drawLinks(row);
        lanes.drawMarks(row);
        lanes.drawEvents(row);
    }
    drawLegend(&canvas);
    frame.drawNotes();
    return svg.finished();
}

QByteArray timelineSvg(const QVector<SessionEntry> &entries, const TimelineOptions &options)
{
    Timeline timeline(options);
    for (const SessionEntry &entry : entries)
        timeline.add(entry);
    return timeline.svg();
}

QByteArray timelineSignature()
{
    return QByteArray("<!--") + pictureComment + "-->";
}

} // namespace Vorn::Workbench
