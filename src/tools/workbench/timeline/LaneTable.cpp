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
        if (m_leftOut.size() < maxCountedLanes)
            m_leftOut.insert(device + QLatin1Char(' ') + joinedNames(type, sorted));
        return nullptr;
    }
    m_indexes.insert(key, static_cast<int>(m_lanes.size()));
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
    lane->deviceName = lane->device.isEmpty() ? QStringLiteral("unknown cause")
                                              : m_deviceNames.value(lane->device, node);
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

TimelineLane *LaneTable::find(const QString &device, int type, const QVector<int> &codes)
{
    const int index = indexOf(device, type, codes);
    return index < 0 ? nullptr : &m_lanes[index];
}

QVector<int> LaneTable::drawingOrder() const
{
    QVector<int> order;
    QSet<QString> done;
    for (const TimelineLane &lane : m_lanes) {
        if (done.contains(lane.device))
            continue;
        done.insert(lane.device);
        order += orderOf(lane.device);
    }
    return order;
}

QVector<int> LaneTable::orderOf(const QString &device) const
{
    QVector<int> order;
    QVector<int> chords;
    for (int i = 0; i < m_lanes.size(); ++i) {
        if (m_lanes.at(i).device == device)
            (m_lanes.at(i).kind == TimelineLane::Kind::Chord ? chords : order).append(i);
    }
    // Chords are inserted last: a key's lane may have been created after the chord's.
    for (const int index : qAsConst(chords)) {
        const TimelineLane &chord = m_lanes.at(index);
        int place = 0;
        for (int at = 0; at < order.size(); ++at) {
            const TimelineLane &other = m_lanes.at(order.at(at));
            const bool isOfChord = other.type == chord.type
                && std::any_of(other.codes.begin(), other.codes.end(),
                               [&](int code) { return chord.codes.contains(code); });
            if (isOfChord)
                place = at + 1;
        }
        order.insert(place, index);
    }
    return order;
}

int LaneTable::indexOf(const QString &device, int type, QVector<int> codes) const
{
    return m_indexes.value(keyOf(device, type, std::move(codes)), -1);
}

} // namespace Vorn::Workbench
