#include "SessionEntries.h"

using namespace Vorn::Workbench;

namespace Vorn::Test {

SessionEntry start()
{
    return {0, SessionStart{"a.scenario", "player.toml", 1'700'000'000'000'000}};
}

SessionEntry plugged(qint64 time, const char *device, const char *name)
{
    return {time, DeviceChange{device, name, InputEvent::Bus::LocalUI, true}};
}

SessionEntry unplugged(qint64 time, const char *device, const char *name)
{
    return {time, DeviceChange{device, name, InputEvent::Bus::LocalUI, false}};
}

SessionEntry key(qint64 time, int code, int value, const char *device)
{
    return {time, RecordRead{device, EV_KEY, code, value, 1}};
}

SessionEntry detector(qint64 time, DetectorStep::What what, const QVector<int> &keys, qint64 due,
                      bool mapped)
{
    return {time, DetectorStep{what, front, keys, due, mapped}};
}

SessionEntry event(qint64 time, InputEvent::Command command, InputEvent::State state,
                   const QVector<int> &codes)
{
    return {time,
            EventPublished{command, state, InputEvent::Bus::LocalUI, front, EV_KEY, codes,
                           std::nullopt}};
}

SessionEntry remark(qint64 time)
{
    return {time, Remark{"remark"}};
}

QVector<SessionEntry> longPress()
{
    using What = DetectorStep::What;
    return {start(),
            plugged(0),
            key(200 * ms, KEY_INFO, 1),
            detector(200 * ms, What::LongPressDue, {KEY_INFO}, 1210 * ms),
            {1250 * ms,
             EventPublished{InputEvent::Info,
                            InputEvent::KeyLongPress,
                            InputEvent::Bus::LocalUI,
                            front,
                            EV_KEY,
                            {KEY_INFO},
                            40 * ms}},
            key(2200 * ms, KEY_INFO, 0),
            detector(2200 * ms, What::LongPressEnded, {KEY_INFO}),
            event(2200 * ms, InputEvent::Info, InputEvent::KeyReleased)};
}

QVector<SessionEntry> chord()
{
    using What = DetectorStep::What;
    const QVector<int> pair{KEY_STOP, KEY_PLAY};
    return {start(),
            plugged(0),
            key(300 * ms, KEY_STOP, 1),
            key(500 * ms, KEY_PLAY, 1),
            detector(500 * ms, What::FirstKeyWithdrawn, {KEY_STOP}),
            detector(500 * ms, What::ChordFound, pair, 0, true),
            event(500 * ms, InputEvent::FactoryReset, InputEvent::KeyPressed, pair),
            key(700 * ms, KEY_INFO, 1),
            detector(700 * ms, What::Dropped, {KEY_INFO}),
            key(1000 * ms, KEY_STOP, 0),
            key(1100 * ms, KEY_PLAY, 0),
            detector(1100 * ms, What::ChordReleased, pair),
            event(1100 * ms, InputEvent::FactoryReset, InputEvent::KeyReleased, pair)};
}

SessionEntry lineIn(qint64 time, int value, qint64 stamp)
{
    return {time, RecordRead{front, EV_SW, SW_LINEIN_INSERT, value, stamp}};
}

SessionEntry lineInEvent(qint64 time, InputEvent::State state)
{
    return {time,
            EventPublished{InputEvent::SWLineIn,
                           state,
                           InputEvent::Bus::LocalUI,
                           front,
                           EV_SW,
                           {SW_LINEIN_INSERT},
                           std::nullopt}};
}

TimelineModel collected(const QVector<SessionEntry> &entries, TimelineSpan wanted)
{
    TimelineCollector collector(wanted);
    for (const SessionEntry &entry : entries)
        collector.add(entry);
    return collector.finished();
}

Picture draw(const QVector<SessionEntry> &entries, const TimelineOptions &options)
{
    return Picture(timelineSvg(entries, options));
}

} // namespace Vorn::Test
