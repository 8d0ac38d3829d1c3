#include "LaneTable.h"

#include "TimelineText.h"

#include <linux/input.h>

#include <algorithm>
#include <utility>

namespace Vorn::Workbench {

void LaneTable::setDeviceName(const QString &device, const QString &name)
{
    m_deviceNames.insert(device, name);
}

// The keys of a chord are one lane, whichever was pressed first.
LaneTable::Key LaneTable::keyOf(const QString &device, int type, QVector<int> codes)
{
    std::sort(codes.begin(), codes.end());
    return {device, {type, codes}};
}

TimelineLane *LaneTable::lane(const QString &device, int type, QVector<int> codes)
{
    const Key key = keyOf(device, type, std::move(codes));
    const auto known = m_indexes.constFind(key);
    if (known != m_indexes.constEnd())
        return &m_lanes[*known];
    const QVector<int> &sorted = key.second.second;
    if (m_lanes.size() >= maxTimelineLanes) {
        // A set, because a lane that is left out may be asked for any number of times.
        m_leftOut.insert(device + joinedNames(type, sorted));
        return nullptr;
    }
    m_indexes.insert(key, m_lanes.size());
    TimelineLane lane;
    lane.device = device;
    lane.type = type;
    lane.codes = sorted;
    describe(&lane);
    m_lanes.append(lane);
    return &m_lanes.last();
}

TimelineLane *LaneTable::keyLane(const QString &device, int code)
{
    return lane(device, EV_KEY, {code});
}

void LaneTable::describe(TimelineLane *lane) const
{
    // A session that was cut may lack the entry that announced the device.
    const QString node = lane->device.section(QLatin1Char('/'), -1);
    lane->deviceName = m_deviceNames.value(lane->device, node);
    lane->label = joinedNames(lane->type, lane->codes);
    if (lane->codes.isEmpty())
        lane->label = QStringLiteral("events");
    else if (lane->codes.size() > 1)
        lane->kind = TimelineLane::Kind::Chord;
    else if (lane->type == EV_KEY)
        lane->kind = TimelineLane::Kind::Key;
    else if (lane->type == EV_SW)
        lane->kind = TimelineLane::Kind::Switch;
}

void LaneTable::mark(const QString &device, int code, TimelineMark::Kind kind, qint64 time,
                     const QString &text)
{
    if (TimelineLane *lane = keyLane(device, code))
        lane->marks.append(
            {kind, time, QStringLiteral("%1: %2 %3").arg(timelineTime(time), lane->label, text)});
}

QVector<int> LaneTable::drawingOrder() const
{
    QVector<int> order;
    for (int i = 0; i < m_lanes.size(); ++i) {
        if (m_lanes.at(i).kind != TimelineLane::Kind::Chord)
            order.append(i);
    }
    // Chords are inserted last: a key's lane may have been created after the chord's.
    for (int i = 0; i < m_lanes.size(); ++i) {
        const TimelineLane &chord = m_lanes.at(i);
        if (chord.kind != TimelineLane::Kind::Chord)
            continue;
        int place = 0;
        for (int at = 0; at < order.size(); ++at) {
            const TimelineLane &other = m_lanes.at(order.at(at));
            const bool isOfChord = other.device == chord.device && other.type == chord.type
                && std::any_of(other.codes.begin(), other.codes.end(),
                               [&](int code) { return chord.codes.contains(code); });
            if (isOfChord)
                place = at + 1;
        }
        order.insert(place, i);
    }
    return order;
}

int LaneTable::indexOf(const QString &device, int type, QVector<int> codes) const
{
    return m_indexes.value(keyOf(device, type, std::move(codes)), -1);
}

} // namespace Vorn::Workbench
