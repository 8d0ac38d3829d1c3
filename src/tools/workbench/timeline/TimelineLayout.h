#ifndef VORN_WORKBENCH_TIMELINELAYOUT_H
#define VORN_WORKBENCH_TIMELINELAYOUT_H

#include "Timeline.h"
#include "TimelineAxis.h"
#include "TimelineModel.h"

#include <QString>
#include <QVector>

/// Where everything is in the picture of a session. Coordinates and lengths are in px.
namespace Vorn::Workbench {

/// A text beside the point it belongs to.
struct PlacedLabel
{
    double x = 0;
    int row = 0;
    bool isShown = true; ///< false if there is no room; `row` is then below all other labels
    bool isLeft = false; ///< left of the point, which is near the right edge of the picture
};

struct PlacedLane
{
    const TimelineLane *lane = nullptr;
    int index = 0; ///< in the model
    double top = 0;
    double height = 0;
    QVector<TimelineEvent> events; ///< those within the picture's time range
    QVector<PlacedLabel> labels; ///< of the events
};

/// A flag, or several that coincide.
struct PlacedFlag
{
    TimelineFlag flag;
    PlacedLabel label;
};

struct PlacedLegend
{
    enum class Item {
        Down,
        Repeat,
        Withdrawn,
        Timer,
        Due,
        Late,
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
constexpr double labelRow = 15;
/// Within a lane, from its top.
constexpr double barTop = 13;
constexpr double barHeight = 14;
constexpr double barMiddle = barTop + barHeight / 2;
constexpr double barBottom = barTop + barHeight;
constexpr double eventTop = barBottom + 6;
constexpr int laneLabelLength = 30;
constexpr int flagLabelLength = 60;
} // namespace Metrics

class TimelineLayout
{
public:
    /// @param model must live longer
    TimelineLayout(const TimelineModel &model, const TimelineOptions &options);

    /// Whether a long press was published so long after it was due that the delay is visible.
    bool isLate(const TimelineEvent &event) const;

    TimelineAxis axis;
    QVector<PlacedLane> lanes;
    QVector<PlacedFlag> flags;
    QVector<PlacedLegend> legend;
    bool hasIdentifiers = false;
    bool hasTicks = false; ///< whether the detectors' ticks are far enough apart to be shown
    double identifierTop = 0;
    double flagTop = 0;
    double axisTop = 0;
    double lanesTop = 0;
    double lanesBottom = 0;
    double width = 0;
    double height = 0;

private:
    void placeFlags(const TimelineModel &model);
    void placeLanes(const TimelineModel &model);
    QVector<PlacedLegend> neededLegend() const;
    void placeLegend();
    bool isShown(const TimelineLane &lane) const;
};

} // namespace Vorn::Workbench

#endif
