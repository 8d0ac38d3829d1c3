#include "ObservedHandlers.h"

#include "Session.h"
#include "SessionLog.h"
#include "vorn.h"

#include <algorithm>
#include <utility>

namespace Vorn::Workbench {

namespace {

/// Sets what is being processed, and puts back what was when it goes.
class CauseScope
{
public:
    CauseScope(std::optional<Cause> *cause, Cause value)
        : m_cause(cause)
        , m_before(std::exchange(*cause, std::move(value)))
    { }
    ~CauseScope() { *m_cause = std::move(m_before); }
    CauseScope(const CauseScope &) = delete;
    CauseScope &operator=(const CauseScope &) = delete;

private:
    std::optional<Cause> *m_cause;
    std::optional<Cause> m_before;
};

qint64 stampOf(const input_event &event)
{
    return static_cast<qint64>(event.input_event_sec) * 1'000'000
        + static_cast<qint64>(event.input_event_usec);
}

/// As the library computes it.
qint64 stampInMilliseconds(const input_event &event)
{
    return static_cast<qint64>(event.input_event_sec) * 1000
        + static_cast<qint64>(event.input_event_usec) / 1000;
}

void tellRecord(const Observation &observation, const QString &device, const input_event &event)
{
    // A position that was asked for carries no time, and the device sent no record.
    if (observation.tellsRecords && stampOf(event) != 0) {
        observation.log->add(
            RecordRead{device, event.type, event.code, event.value, stampOf(event)});
    }
}

} // namespace

ObservedKeyHandler::ObservedKeyHandler(const QString &path, const QString &name,
                                       const Observation &observation)
    : BasicKeyInputHandler(name)
    , m_device(path)
    , m_observation(observation)
{
    Vorn::connect(&m_doubleKeyDetect, &DoubleKeyDetect::keyDoubleDetect, this,
                  &ObservedKeyHandler::onKeyDoubleDetect);
}

void ObservedKeyHandler::registerAll(const HandlerProfile &handlers)
{
    for (const KeyMapping &key : handlers.keys)
        registerKeyMapping(key);
    for (const ChordMapping &chord : handlers.chords) {
        if (chord.bus)
            registerDoubleKey(chord.first, chord.second, *chord.bus, chord.command);
        else
            registerDoubleKey(chord.first, chord.second, chord.command);
    }
}

// The copy of what is registered follows the library's rules: the plain form drops the long press
// of an earlier registration, the bus-filtered form keeps it.
void ObservedKeyHandler::registerKeyMapping(const KeyMapping &key)
{
    std::optional<LongPress> longPress = key.longPress;
    if (key.bus) {
        registerKey(key.code, *key.bus, key.command, key.immediate);
        if (longPress)
            enableLongPress(key.code, *key.bus, longPress->repeat, longPress->timeouts);
        if (!listener() || listener()->bus() != *key.bus)
            return;
        if (!longPress)
            longPress = m_keys.value(key.code).longPress;
    } else {
        registerKey(key.code, key.command, key.immediate);
        if (longPress)
            enableLongPress(key.code, longPress->repeat, longPress->timeouts);
    }
    KeyMapping &registered = m_keys[key.code];
    registered = key;
    registered.longPress = longPress;
}

void ObservedKeyHandler::invalidate()
{
    BasicKeyInputHandler::invalidate();
    m_doubleKeyDetect.reset();
    m_chord.clear();
}

// One record at a time, so that what is published comes between the records as it came about. The
// library goes through a batch in the same way.
void ObservedKeyHandler::processEvent(const QList<input_event> &events)
{
    for (const input_event &event : events) {
        tellRecord(m_observation, m_device, event);
        if (event.type != EV_KEY)
            continue;
        const CauseScope scope(m_observation.cause,
                               Cause{m_device, EV_KEY, {event.code}, stampOf(event), {}});
        m_isAnswered = false;
        m_doubleKeyDetect.checkDoubleKeyDetect(event);
        if (!m_isAnswered && !m_chord.contains(event.code))
            tell(DetectorStep::What::Dropped, {event.code});
        BasicKeyInputHandler::processEvent({event});
    }
}

std::optional<ObservedKeyHandler::DueKey> ObservedKeyHandler::dueKey(InputEvent::Command command,
                                                                     qint64 now) const
{
    std::optional<DueKey> found;
    for (auto it = m_timed.cbegin(); it != m_timed.cend(); ++it) {
        const KeyMapping key = m_keys.value(it.key());
        const bool isReported = key.command == command && key.longPress
            && (it->count == 1 || key.longPress->repeat) && it->due <= now;
        const bool isFirst =
            !found || std::make_pair(it->due, it.key()) < std::make_pair(found->due, found->code);
        if (isReported && isFirst)
            found = DueKey{it.key(), it->due};
    }
    return found;
}

void ObservedKeyHandler::longPressReported(int code, qint64 now)
{
    const auto timed = m_timed.find(code);
    if (timed != m_timed.end())
        advance(code, &*timed, now);
}

void ObservedKeyHandler::advance(int code, Timed *timed, qint64 from)
{
    const std::optional<LongPress> longPress = m_keys.value(code).longPress;
    if (!longPress)
        return;
    int &stage = m_stages[code];
    stage = std::min(stage + 1, longPress->timeouts.size() - 1);
    ++timed->count;
    timed->due = from + longPress->timeouts.at(stage);
    if (longPress->repeat)
        tell(DetectorStep::What::LongPressDue, {code}, timed->due);
}

void ObservedKeyHandler::onKeyDoubleDetect(const QList<input_event> &keys, bool fake)
{
    m_isAnswered = true;
    if (keys.size() == 2) {
        onChord(keys);
    } else if (!keys.isEmpty()) {
        if (fake) {
            tell(DetectorStep::What::FirstKeyWithdrawn, {keys.first().code});
            if (m_observation.cause->has_value())
                (*m_observation.cause)->withdrawn = keys.first().code;
        }
        time(keys.first());
    }
}

// A chord with a command is timed by its first key, and any other pair by its second.
void ObservedKeyHandler::onChord(const QList<input_event> &keys)
{
    const QVector<int> codes{keys.first().code, keys.last().code};
    const bool isMapped =
        getDoubleKeyEvent({codes.first(), codes.last()}) != InputEvent::Command::None;
    const bool isPressed = keys.first().value != 0;
    m_chord = isPressed ? codes : QVector<int>();
    if (m_observation.cause->has_value())
        (*m_observation.cause)->codes = isMapped ? codes : QVector<int>{codes.last()};
    tell(isPressed ? DetectorStep::What::ChordFound : DetectorStep::What::ChordReleased, codes, 0,
         isMapped);
    time(isMapped ? keys.first() : keys.last());
}

// The steps of the library's long-press detector that depend on records.
void ObservedKeyHandler::time(const input_event &event)
{
    const int code = event.code;
    const std::optional<LongPress> longPress = m_keys.value(code).longPress;
    if (!longPress)
        return;
    if (event.value == 0) {
        if (m_timed.remove(code) > 0)
            tell(DetectorStep::What::LongPressEnded, {code});
        if (longPress->timeouts.size() > 1)
            m_stages[code] = 0;
        return;
    }
    // Timeouts that ran out without a report have moved the stage on.
    const auto timed = m_timed.find(code);
    const qint64 now = SessionLog::wallClock() / 1000;
    while (timed != m_timed.end() && timed->count > 1 && !longPress->repeat && timed->due <= now
           && m_stages.value(code) < longPress->timeouts.size() - 1)
    {
        advance(code, &*timed, timed->due);
    }
    const qint64 due = stampInMilliseconds(event) + longPress->timeouts.at(m_stages.value(code));
    m_timed.insert(code, Timed{due, 1});
    tell(DetectorStep::What::LongPressDue, {code}, due);
}

void ObservedKeyHandler::tell(DetectorStep::What what, const QVector<int> &keys, qint64 due,
                              bool isMapped)
{
    DetectorStep step;
    step.what = what;
    step.device = m_device;
    step.keys = keys;
    step.mapped = isMapped;
    if (what == DetectorStep::What::LongPressDue) {
        // Moments of the wall clock as moments of the session.
        step.due = m_observation.log->now() + due * 1000 - SessionLog::wallClock();
    }
    m_observation.log->add(step);
}

ObservedSwitchHandler::ObservedSwitchHandler(const QString &path, const QString &name,
                                             const Observation &observation)
    : BasicSwInputHandler(name)
    , m_device(path)
    , m_observation(observation)
{ }

void ObservedSwitchHandler::registerAll(const HandlerProfile &handlers)
{
    for (const SwitchMapping &mapping : handlers.switches)
        registerSwitch(mapping.code, mapping.command);
}

void ObservedSwitchHandler::processEvent(const QList<input_event> &events)
{
    for (const input_event &event : events) {
        tellRecord(m_observation, m_device, event);
        if (event.type != EV_SW)
            continue;
        const CauseScope scope(m_observation.cause,
                               Cause{m_device, EV_SW, {event.code}, stampOf(event), {}});
        BasicSwInputHandler::processEvent({event});
    }
}

} // namespace Vorn::Workbench
