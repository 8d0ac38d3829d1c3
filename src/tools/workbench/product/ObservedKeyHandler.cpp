#include "ObservedKeyHandler.h"

#include "SessionLog.h"
#include "vorn.h"

namespace Vorn::Workbench {

ObservedKeyHandler::ObservedKeyHandler(const QString &path, const QString &name,
                                       const Observation &observation)
    : BasicKeyInputHandler(name)
    , m_device(path)
    , m_observation(observation)
    , m_longPresses(
          [this](DetectorStep::What what, int code, qint64 due) { logLongPress(what, code, due); })
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

void ObservedKeyHandler::registerKeyMapping(const KeyMapping &key)
{
    if (key.bus) {
        registerKey(key.code, *key.bus, key.command, key.immediate);
        if (key.longPress)
            enableLongPress(key.code, *key.bus, key.longPress->repeat, key.longPress->timeouts);
        // The library ignores registrations for another bus.
        if (!listener() || listener()->bus() != *key.bus)
            return;
    } else {
        registerKey(key.code, key.command, key.immediate);
        if (key.longPress)
            enableLongPress(key.code, key.longPress->repeat, key.longPress->timeouts);
    }
    m_longPresses.registerKey(key);
}

// The library's handler forgets its chord here, but not the keys that it times.
void ObservedKeyHandler::invalidate()
{
    BasicKeyInputHandler::invalidate();
    m_doubleKeyDetect.reset();
    m_chord.clear();
}

/*
 *  record      the detector answers      logged                 an event now comes from
 *  ─────────────────────────────────────────────────────────────────────────────────────────
 *  A press     [A]                                              A
 *  B press     [A release], fake         FirstKeyWithdrawn A    a release: A
 *              [A, B]                    ChordFound A+B         A+B, or B if A+B is not mapped
 *  C press     nothing                   Dropped C
 *  A release   nothing                   (part of the chord)
 *  B release   [A, B]                    ChordReleased A+B      as for ChordFound
 *
 *  One record at a time, so that what is published is logged after the record it comes from. The
 *  library takes a batch record by record, too.
 */
void ObservedKeyHandler::processEvent(const QList<input_event> &events)
{
    for (const input_event &event : events) {
        logRecord(m_observation, m_device, event);
        if (event.type != EV_KEY)
            continue;
        const CauseScope scope(m_observation.cause,
                               Cause{m_device, EV_KEY, {event.code}, stampOf(event), {}});
        m_isAnswered = false;
        m_doubleKeyDetect.checkDoubleKeyDetect(event);
        if (!m_isAnswered && !m_chord.contains(event.code))
            log(DetectorStep::What::Dropped, {event.code});
        BasicKeyInputHandler::processEvent({event});
    }
}

void ObservedKeyHandler::onKeyDoubleDetect(const QList<input_event> &keys, bool fake)
{
    m_isAnswered = true;
    if (keys.size() == 2) {
        onChord(keys);
    } else if (!keys.isEmpty()) {
        if (fake) {
            log(DetectorStep::What::FirstKeyWithdrawn, {keys.first().code});
            if (m_observation.cause->has_value())
                (*m_observation.cause)->withdrawn = keys.first().code;
        }
        m_longPresses.process(keys.first());
    }
}

// The library times a mapped chord by its first key, and the second key of any other pair.
void ObservedKeyHandler::onChord(const QList<input_event> &keys)
{
    const QVector<int> codes{keys.first().code, keys.last().code};
    const bool isMapped =
        getDoubleKeyEvent({codes.first(), codes.last()}) != InputEvent::Command::None;
    const bool isPressed = keys.first().value != 0;
    m_chord = isPressed ? codes : QVector<int>();
    if (m_observation.cause->has_value())
        (*m_observation.cause)->codes = isMapped ? codes : QVector<int>{codes.last()};
    log(isPressed ? DetectorStep::What::ChordFound : DetectorStep::What::ChordReleased, codes,
        isMapped);
    m_longPresses.process(isMapped ? keys.first() : keys.last());
}

void ObservedKeyHandler::log(DetectorStep::What what, const QVector<int> &keys, bool isMapped)
{
    DetectorStep step;
    step.what = what;
    step.device = m_device;
    step.keys = keys;
    step.mapped = isMapped;
    m_observation.log->add(step);
}

void ObservedKeyHandler::logLongPress(DetectorStep::What what, int code, qint64 due)
{
    DetectorStep step;
    step.what = what;
    step.device = m_device;
    step.keys = {code};
    // From the wall clock to the session's, which is never set.
    if (what == DetectorStep::What::LongPressDue)
        step.due = m_observation.log->now() + due * 1000 - SessionLog::wallClock();
    m_observation.log->add(step);
}

} // namespace Vorn::Workbench
