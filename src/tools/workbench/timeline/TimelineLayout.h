#ifndef VORN_WORKBENCH_TIMELINELAYOUT_H
#define VORN_WORKBENCH_TIMELINELAYOUT_H

#include "LabelRows.h"
#include "TimelineAxis.h"
#include "TimelineModel.h"

#include <QString>
#include <QVector>

#include <optional>

/// Where everything is in the picture of a session. Coordinates and lengths are in px.
namespace Vorn::Workbench {

/// A text beside the point it belongs to.
struct PlacedLabel
{
    double x = 0;
    QString text = QString(); ///< empty if there is none, or no room for it
    int row = 0;
    bool isLeft = false; ///< of the point
};

struct PlacedEvent
{
    enum class Half { None, Press, Release };

    TimelineEvent event;
    PlacedLabel label;
    Half half = Half::None; ///< of a click whose press and release were published at once
};

struct PlacedLane
{
    const TimelineLane *lane = nullptr;
    int index = 0; ///< in the model
    double top = 0;
    double height = 0;
    QVector<PlacedEvent> events; ///< those within the row
};

/// The name of a device, above its lanes.
struct PlacedHeading
{
    QString name;
    QString node;
    double top = 0;
};

/// A flag, or several that coincide.
struct PlacedFlag
{
    TimelineFlag flag;
    PlacedLabel label;
};

/// A part of the session, from edge to edge.
struct PlacedRow
{
    TimelineAxis axis;
    QVector<PlacedHeading> headings = {};
    QVector<PlacedLane> lanes = {};
    QVector<PlacedFlag> flags = {};
    double top = 0;
    double flagTop = 0;
    double axisTop = 0;
    double lanesTop = 0;
    double lanesBottom = 0;

    /// Since when a long press was due without being published, if that is visible. A time that was
    /// due before anybody could know, after the clock was set for example, is not a delay.
    std::optional<qint64> lateSince(const TimelineEvent &event) const;
};

struct PlacedLegend
{
    enum class Item {
        Down,
        Repeat,
        Withdrawn,
        Forgotten,
        Timed,
        Due,
        Late,
        Click,
        Press,
        LongPress,
        Release,
        On,
        Off,
        Chord,
        Dropped,
    };

    Item item = Item::Down;
    QString text = QString();
    double x = 0;
    double y = 0; ///< the middle's
};

namespace Metrics {
constexpr double margin = 16;
constexpr double labelRow = 14;
constexpr double identifierHeight = 18;
/// Within a lane, from its top.
constexpr double barTop = 10;
constexpr double barHeight = 14;
constexpr double barMiddle = barTop + barHeight / 2;
constexpr double barBottom = barTop + barHeight;
constexpr double timedBottom = barBottom + 3;
constexpr double eventMiddle = barBottom + 12;
constexpr int maxEventRows = 5;
constexpr int laneLabelLength = 30;
constexpr int flagLabelLength = 60;
} // namespace Metrics

class TimelineLayout
{
public:
    /// @param model must live longer
    explicit TimelineLayout(const TimelineModel &model);

    QVector<PlacedRow> rows;
    QVector<PlacedLegend> legend;
    bool hasIdentifiers = false;
    double width = 0;
    double height = 0;

private:
    void placeRow(PlacedRow *row, double top);
    void placeFlags(PlacedRow *row) const;
    void placeLanes(PlacedRow *row) const;
    void placeHeading(PlacedRow *row, const TimelineLane &lane, double *top) const;
    void placeEvents(const PlacedRow &row, PlacedLane *placed) const;
    QVector<double> linesThrough(const PlacedRow &row, int lane) const;
    QVector<PlacedLegend> neededLegend() const;
    void placeLegend();

    const TimelineModel &m_model;
};

} // namespace Vorn::Workbench

#endif
