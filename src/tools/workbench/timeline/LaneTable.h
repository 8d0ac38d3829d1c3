#ifndef VORN_WORKBENCH_LANETABLE_H
#define VORN_WORKBENCH_LANETABLE_H

#include "TimelineModel.h"

#include <QMap>
#include <QPair>
#include <QSet>
#include <QString>
#include <QVector>

namespace Vorn::Workbench {

/// More lanes than that are neither readable nor quick to draw.
constexpr int maxTimelineLanes = 200;
/// Of lanes that are left out.
constexpr int maxCountedLanes = 10'000;

/// The lanes of a session while it is being read, by device, type and codes.
class LaneTable
{
public:
    /// Lanes created from now on show this name for the device.
    void setDeviceName(const QString &device, const QString &name);

    /// Created on first use. Null if there are already too many lanes; pointers are valid until the
    /// next call.
    TimelineLane *lane(const QString &device, int type, QVector<int> codes);
    TimelineLane *keyLane(const QString &device, int code);

    /// Null if it was never created.
    TimelineLane *find(const QString &device, int type, const QVector<int> &codes);

    QVector<TimelineLane> &lanes() { return m_lanes; }
    /// Indexes of lanes() from top to bottom: in order of creation, but those of a device together,
    /// and a chord under its keys.
    QVector<int> drawingOrder() const;
    /// Index in lanes(); -1 if there is no such lane.
    int indexOf(const QString &device, int type, QVector<int> codes) const;
    int leftOutCount() const { return static_cast<int>(m_leftOut.size()); }

private:
    using Key = QPair<QString, QPair<int, QVector<int>>>;

    static Key keyOf(const QString &device, int type, QVector<int> codes);
    void describe(TimelineLane *lane) const;
    QVector<int> orderOf(const QString &device) const;

    QVector<TimelineLane> m_lanes;
    QMap<Key, int> m_indexes;
    QSet<QString> m_leftOut;
    QMap<QString, QString> m_deviceNames;
};

} // namespace Vorn::Workbench

#endif
