#include "KeyObserver.h"

#include "EventNames.h"
#include "Reasons.h"
#include "SessionLog.h"
#include "SessionWords.h"

#include <algorithm>
#include <utility>

namespace Vorn::Workbench {

namespace {

using Step = DetectorStep::What;
using Outcome = RecordOutcome::What;

/// µs. The two clocks are not read at the same moment; one that was set is further off.
constexpr qint64 sameTime = 20'000;

QVector<int> codesOf(const QList<input_event> &events)
{
    QVector<int> codes;
    for (const input_event &event : events)
        codes += event.code;
    return codes;
}

} // namespace

/*
 *  The slots of the library and what is called around them:
 *
 *  record ──▶ chord detector ──▶ beginKeys │ on_doubleKeyDetect │ end      0, 1 or 2 times a record
 *  timer  ──▶ stateTiming │ update │ stateTiming
 *                             └──▶ beginLongPress │ on_keyLongPress │ end
 *
 *  What is published meanwhile has the cause that was begun last. Slots of the product may do
 *  anything in there, so the timing is stated again after each.
 */
KeyObserver::KeyObserver(BasicKeyInputHandler *handler, const ObservedDevice &seen,
                         Observation *observation, Questions questions)
    : m_handler(handler)
    , m_device(seen)
    , m_observation(observation)
    , m_questions(std::move(questions))
{
    InputProbe::surroundKeys(
        handler, [this](const QList<input_event> &keys, bool fake) { beginKeys(keys, fake); },
        [this] { end(); });
    InputProbe::surroundLongPresses(
        handler, [this](int code) { beginLongPress(code); }, [this] { end(); });
    InputProbe::surroundTicks(
        handler,
        [this] {
            m_observation->log()->hold();
            stateTiming();
            m_isTicking = true;
        },
        [this] {
            m_isTicking = false;
            stateTiming();
            m_observation->log()->release();
        });
}

void KeyObserver::invalidate(const Invalidate &library)
{
    const SessionHold hold(m_observation->log());
    const QVector<int> stored = storedCodes();
    library();
    if (!stored.isEmpty())
        log(Step::Forgotten, stored);
    for (const int code : stored)
        m_forgotten.insert(code, m_observation->log()->now());
    stateTiming();
}

// One record at a time, so that what is published is logged after the record it comes from. The
// library takes a batch record by record, too.
void KeyObserver::processEvent(const QList<input_event> &events, const ProcessEvent &library)
{
    const SessionHold hold(m_observation->log());
    for (const input_event &event : events) {
        if (takeRecord(m_observation->log(), m_device, EV_KEY, event))
            process(event, library);
    }
}

void KeyObserver::process(const input_event &event, const ProcessEvent &library)
{
    Answer answer;
    Answer *const outer = std::exchange(m_answer, &answer);
    m_observation->begin(
        Cause{m_device.path, EV_KEY, {event.code}, stampOf(event), [this] { stateTiming(); }});
    library({event});
    const QStringList published = m_observation->end();
    m_answer = outer;
    stateTiming();
    tell(event, answer, published);
    if (event.value != 0)
        m_forgotten.remove(event.code);
}

/*
 *  record      the detector answers      logged                 an event now comes from
 *  ─────────────────────────────────────────────────────────────────────────────────────────
 *  A press     [A]                                              A
 *  B press     [A release], fake         FirstKeyWithdrawn A    A
 *              [A, B]                    ChordFound A+B         A+B, or B if A+B is not mapped
 *  C press     nothing                   Dropped C
 *  A release   nothing                   (part of the chord)
 *  B release   [A, B]                    ChordReleased A+B      as for ChordFound
 */
void KeyObserver::beginKeys(const QList<input_event> &keys, bool fake)
{
    Cause cause = m_observation->current();
    cause.codes = codesOf(keys);
    bool isMapped = false;
    if (fake) {
        log(Step::FirstKeyWithdrawn, cause.codes);
    } else if (keys.size() == 2) {
        isMapped = beginChord(keys);
        // Of a pair without a command the library publishes the second key.
        if (!isMapped)
            cause.codes.removeFirst();
    }
    if (m_answer)
        *m_answer = Answer{true, keys, isMapped};
    m_observation->beginPart(cause);
}

bool KeyObserver::beginChord(const QList<input_event> &keys)
{
    DetectorStep step;
    // Not by the first alone: in an application's event loop it may have come up meanwhile.
    const bool isReleased = std::all_of(keys.cbegin(), keys.cend(),
                                        [](const input_event &key) { return key.value == 0; });
    step.what = isReleased ? Step::ChordReleased : Step::ChordFound;
    step.keys = codesOf(keys);
    step.mapped =
        m_handler->getDoubleKeyEvent({step.keys.first(), step.keys.last()}) != InputEvent::None;
    log(step);
    if (step.what == Step::ChordFound)
        m_chordSince = m_observation->log()->now();
    return step.mapped;
}

// The detector has moved on to the next timeout already; what it waited for was stated before.
void KeyObserver::beginLongPress(int code)
{
    Cause cause{m_device.path, EV_KEY, {code}, {}, {}};
    if (const std::optional<qint64> due = std::exchange(m_stated[code].due, std::nullopt))
        cause.since = *due * 1000;
    m_observation->begin(cause);
}

void KeyObserver::end()
{
    m_observation->end();
    stateTiming();
}

// A slot that stops the timer does not stop the tick it is called from: keys that are due get their
// long press all the same.
QMap<int, InputProbe::Timing> KeyObserver::timings() const
{
    return m_isTicking || InputProbe::isTiming(*m_handler) ? InputProbe::timings(*m_handler)
                                                           : QMap<int, InputProbe::Timing>();
}

void KeyObserver::stateTiming()
{
    const QMap<int, InputProbe::Timing> timings = this->timings();
    const QList<int> before = m_stated.keys();
    for (const int code : before) {
        if (!timings.contains(code))
            endTiming(code);
    }
    // From the wall clock to the session's, which is never set.
    const qint64 sessionStart = SessionLog::wallClock() - m_observation->log()->now();
    for (auto it = timings.cbegin(); it != timings.cend(); ++it) {
        Stated &stated = m_stated[it.key()];
        if (!it->due) {
            // What was due will not come: a slot has registered the key again, without repeats.
            if (stated.due)
                log(Step::LongPressEnded, {it.key()});
            stated = Stated{{}, stated.time, stated.hasEnded || stated.due};
            continue;
        }
        const qint64 time = *it->due * 1000 - sessionStart;
        if (it->due == stated.due && qAbs(time - stated.time) <= sameTime)
            continue;
        stated = Stated{it->due, time, false};
        DetectorStep step;
        step.what = Step::LongPressDue;
        step.keys = {it.key()};
        step.due = time;
        log(step);
    }
}

void KeyObserver::endTiming(int code)
{
    if (!m_stated.take(code).hasEnded)
        log(Step::LongPressEnded, {code});
}

void KeyObserver::endTiming()
{
    const QList<int> codes = m_stated.keys();
    for (const int code : codes)
        endTiming(code);
}

void KeyObserver::tell(const input_event &event, const Answer &answer, const QStringList &published)
{
    const QVector<int> keys = codesOf(answer.keys);
    const bool isUnmappedPair = keys.size() == 2 && !answer.isMapped;
    if (isUnmappedPair && event.value != 0)
        m_questions.otherKeysMattered();
    if (!answer.isGiven) {
        tellUnanswered(event);
    } else if (published.isEmpty()) {
        tellUnpublished(event, answer.keys);
    } else {
        const QString reason = isUnmappedPair
            ? QStringLiteral("%1 have no command together: %2 is published at once")
                  .arg(joinedKeys(keys), keyName(keys.last()))
            : QString();
        logOutcome(m_observation->log(), m_device, event, Outcome::Published, reason, published);
    }
}

void KeyObserver::tellUnanswered(const input_event &event)
{
    const QVector<int> stored = storedCodes();
    if (stored.contains(event.code)) {
        log(event, Outcome::Chord,
            event.value == 0
                ? QStringLiteral("%1 are a pair until both are up").arg(joinedKeys(stored))
                : QStringLiteral("%1 are a pair already").arg(joinedKeys(stored)));
        return;
    }
    log(Step::Dropped, {event.code});
    if (InputProbe::isChord(*m_handler)) {
        log(event, Outcome::Dropped, blockedReason());
        m_questions.otherKeysMattered();
    } else if (m_forgotten.contains(event.code)) {
        log(event, Outcome::Dropped,
            QStringLiteral("dropped: the handlers were selected at %1, which ended its press")
                .arg(timeText(m_forgotten.take(event.code))));
    } else {
        log(event, Outcome::Dropped, QStringLiteral("dropped: a release without a press"));
    }
}

void KeyObserver::tellUnpublished(const input_event &event, const QList<input_event> &keys)
{
    if (keys.isEmpty()) {
        log(event, Outcome::Dropped,
            QStringLiteral("the handlers were selected again before the pair was complete"));
        return;
    }
    const int code = keys.last().code;
    if (keys.size() == 1 && InputProbe::heldKeys(*m_handler).contains(code)) {
        log(event, Outcome::Held, heldReason(code));
        return;
    }
    const QString pair = keys.size() == 2
        ? QStringLiteral("%1 have no command together, and %2 is ")
              .arg(joinedKeys(codesOf(keys)), keyName(code))
        : QString();
    log(event, Outcome::Unmapped, pair + unmappedReason(code));
}

QString KeyObserver::unmappedReason(int code) const
{
    if (InputProbe::keys(*m_handler).contains(code))
        return QStringLiteral("mapped to None, which is never published");
    QStringList chords;
    const QHash<QPair<int, int>, InputEvent::Command> &all = InputProbe::chords(*m_handler);
    for (auto it = all.cbegin(); it != all.cend(); ++it) {
        if (it.key().first == code)
            chords += keyName(it.key().second);
    }
    if (chords.isEmpty())
        return m_questions.unmapped(code);
    // By name: the order of a hash is another one in every process.
    chords.sort();
    return QStringLiteral("mapped only together with ") + chords.join(QStringLiteral(" or "));
}

QString KeyObserver::blockedReason() const
{
    const QString chord = joinedKeys(storedCodes());
    const QString since = timeText(m_chordSince);
    QVector<int> down;
    for (const input_event &event : InputProbe::storedEvents(*m_handler)) {
        if (event.value != 0)
            down += event.code;
    }
    return down == storedCodes()
        ? QStringLiteral("dropped, since %1 are down since %2").arg(chord, since)
        : QStringLiteral("dropped, since %1 of the chord %2, begun at %3, is still down")
              .arg(joinedKeys(down), chord, since);
}

QString KeyObserver::heldReason(int code) const
{
    QString reason = QStringLiteral("held back until the release");
    const Stated stated = m_stated.value(code);
    if (!stated.due)
        return reason;
    return reason + QStringLiteral(" or the long press due at ") + timeText(stated.time);
}

KeyStates KeyObserver::states() const
{
    QMap<int, KeyState> keys;
    const QList<input_event> &stored = InputProbe::storedEvents(*m_handler);
    for (const input_event &event : stored)
        keys[event.code].isDown = event.value != 0;
    const QHash<int, bool> held = InputProbe::heldKeys(*m_handler);
    for (auto it = held.cbegin(); it != held.cend(); ++it)
        keys[it.key()].isHeld = true;
    const QMap<int, InputProbe::Timing> timings = this->timings();
    for (auto it = timings.cbegin(); it != timings.cend(); ++it) {
        KeyState &state = keys[it.key()];
        state.isCounting = true;
        state.count = it->count;
        if (it->due)
            state.due = m_stated.value(it.key()).time;
    }
    KeyStates states;
    states.device = m_device.path;
    states.hasHandler = true;
    states.isChord = InputProbe::isChord(*m_handler);
    if (states.isChord)
        keys[stored.first().code].isWithdrawn = true;
    for (auto it = keys.begin(); it != keys.end(); ++it) {
        it->code = it.key();
        states.keys.append(*it);
    }
    return states;
}

QVector<int> KeyObserver::storedCodes() const
{
    return codesOf(InputProbe::storedEvents(*m_handler));
}

void KeyObserver::log(Step what, const QVector<int> &keys)
{
    DetectorStep step;
    step.what = what;
    step.keys = keys;
    log(step);
}

void KeyObserver::log(DetectorStep step)
{
    step.device = m_device.path;
    step.identifier = InputProbe::identifier(*m_handler);
    m_observation->log()->add(step);
}

void KeyObserver::log(const input_event &event, Outcome what, const QString &reason)
{
    logOutcome(m_observation->log(), m_device, event, what, reason);
}

} // namespace Vorn::Workbench
