#include "KeyProcessing.h"

#include "dbglog.h"
#include "vorn.h"

#include <QPointer>
#include <QTimer>
#include <QVarLengthArray>

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <algorithm>
#include <ostream>

namespace {

log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("KeyProcessing"));

constexpr int tickInterval = 50;

// UTC: the same instant as in local time, without the cost of a time zone conversion.
QDateTime dateTime(qint64 msecs)
{
    return QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC);
}

QDateTime timeOf(const input_event &event)
{
    // The microseconds are signed, except on 32-bit systems with 64-bit time_t.
    return dateTime(static_cast<qint64>(event.input_event_sec) * 1000
                    + static_cast<long>(event.input_event_usec) / 1000);
}

/// Lets guarded pointers to @p object be made without an allocation from now on: none belongs on
/// the path of a key.
template <typename Object>
void prepareGuards(Object *object)
{
    const QPointer<Object> first(object);
}

// Wraps a list of records for a log line; formatted only if the line is written.
struct Records
{
    const QList<input_event> &list;
};

std::ostream &operator<<(std::ostream &stream, const Records &records)
{
    stream << "(";
    const char *separator = "";
    for (const input_event &event : records.list) {
        stream << separator << event;
        separator = ", ";
    }
    return stream << ")";
}

} // namespace

std::ostream &operator<<(std::ostream &stream, const input_event &event)
{
    // An auto-repeat (2) prints as "release": readers of these lines count only 1 as a press.
    return stream << "input_event: "
                  << "code:" << event.code << " value:" << (event.value == 1 ? "press" : "release")
                  << " time:" << timeOf(event).toString(QStringLiteral("hh:mm:ss,zzz"));
}

/*
 *  timeouts {T0, T1}, repeat
 *
 *  press            T0          T1     T1     T1       release
 *    ├───────────────┼───────────┼──────┼──────┼─────────┤
 *    │ count 1       │ 2         │ 3    │ 4    │ 5       │ forgotten
 *    │ stage 0       │ 1         │ 1    │ 1    │ 1       │ back to 0
 *    ·   ·   ·   ·   ·   ·   ·   ·   ·   ·   ·   ·   ·   ·   ·   50 ms ticks; the next one stops
 */

LongPressDetect::LongPressDetect(QObject *parent)
    : QObject(parent)
    , timer(new QTimer)
{
    prepareGuards(this);
    Vorn::connect(timer, &QTimer::timeout, this, &LongPressDetect::update);
}

LongPressDetect::~LongPressDetect()
{
    // Not deleted, see the constructor's documentation; but stopped, because if a key is held when
    // its device vanishes, the timer would keep waking the process.
    timer->stop();
}

void LongPressDetect::registerEvent(int key, bool repeat, const QList<int> &timeouts)
{
    events.insert(key, Event{timeouts, repeat});
    stages.insert(key, 0);
}

void LongPressDetect::deregisterEvent(int key)
{
    events.remove(key);
    stages.remove(key);
}

void LongPressDetect::process(input_event &event)
{
    const int key = event.code;
    const auto registration = events.constFind(key);

    if (event.value == 0) {
        keyData.remove(key);
        // With a single timeout the stage is always 0.
        if (registration != events.constEnd() && registration->timeouts.size() >= 2)
            stages.insert(key, 0);
        return;
    }

    if (registration == events.constEnd())
        return;
    keyData.insert(key, KeyData{1, timeOf(event)});
    if (!timer->isActive())
        timer->start(tickInterval);
}

void LongPressDetect::reset()
{
    timer->stop();
}

void LongPressDetect::update()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();

    // An application may respond to a long press by running a nested event loop, re-registering
    // keys or deleting this detector, so it must be consistent whenever it emits. Hence the loop
    // iterates over a copy of the codes, looks up each key's state in its turn, and updates it
    // before the signal.
    QVarLengthArray<int, 32> held;
    for (auto it = keyData.constBegin(); it != keyData.constEnd(); ++it)
        held.append(it.key());
    for (const int key : held) {
        const auto found = keyData.constFind(key);
        if (found == keyData.constEnd())
            continue;
        const int count = found->count;
        const qint64 start = found->time.toMSecsSinceEpoch();
        const int stage = stages.value(key, 0);
        const Event event = events.value(key);
        // operator[], not at(): the documented assertion names this operator.
        const qint64 timeout = event.timeouts[stage];
        if (now - start < timeout)
            continue;

        if (stage < event.timeouts.size() - 1)
            stages.insert(key, stage + 1);
        // Count from this tick, not from when the timeout was due: repetitions never come early.
        keyData.insert(key, KeyData{count + 1, dateTime(now)});
        if (count != 1 && !event.repeat)
            continue;
        const QPointer<LongPressDetect> self(this);
        Q_EMIT keyLongPress(key, count);
        if (!self)
            return;
    }

    if (keyData.isEmpty())
        timer->stop();
}

/*
 *  A down ──────┐            B down               A up        B up
 *  [A press]    │  [A release, fake][A+B press]   nothing     [A+B release]
 *     Single    │             Chord                               Idle
 */

DoubleKeyDetect::DoubleKeyDetect(QObject *parent)
    : QObject(parent)
{
    prepareGuards(this);
}

DoubleKeyDetect::~DoubleKeyDetect() = default;

void DoubleKeyDetect::checkDoubleKeyDetect(const input_event &event)
{
    // Checked once: if it is off, nothing that runs before the signals could turn it on.
    const bool isLogging = logger.isEnabledFor(log4cplus::DEBUG_LOG_LEVEL);
    // Not begin(): on an empty list it allocates an array that append() then has to enlarge.
    const auto stored =
        std::find_if(storedEvents.cbegin(), storedEvents.cend(),
                     [&event](const input_event &other) { return other.code == event.code; });
    if (stored != storedEvents.cend()) {
        if (isLogging)
            LOG4CPLUS_DEBUG(logger, "Found already event for code:" << event.code);
        storedEvents[static_cast<int>(stored - storedEvents.cbegin())] = event;
    } else if (detected) {
        if (isLogging) {
            LOG4CPLUS_DEBUG(logger,
                            "Double key press detected and new press event received -> drop");
        }
        return;
    } else if (event.value != 0) {
        storedEvents.append(event);
    } else {
        if (isLogging)
            LOG4CPLUS_DEBUG(logger, "Received release for non existing press -> drop");
        return;
    }
    if (isLogging)
        LOG4CPLUS_DEBUG(logger, "Stored:" << Records{storedEvents});

    // The receiver may reset or delete the detector from inside each signal, so update the state
    // before emitting, and emit a copy of the list.
    if (storedEvents.size() == 1) {
        QList<input_event> single;
        if (event.value == 0)
            single.swap(storedEvents);
        else
            single = storedEvents;
        Q_EMIT keyDoubleDetect(single, false);
    } else if (allPressed(storedEvents)) {
        if (detected)
            return;
        detected = true;
        input_event withdrawn = storedEvents.first();
        withdrawn.value = 0;
        const QPointer<DoubleKeyDetect> self(this);
        Q_EMIT keyDoubleDetect(QList<input_event>{withdrawn}, true);
        if (!self)
            return;
        // Copied only now: if the receiver has reset the detector, the chord is no longer wanted.
        const QList<input_event> chord = storedEvents;
        Q_EMIT keyDoubleDetect(chord, false);
    } else if (allReleased(storedEvents) && detected) {
        const QList<input_event> chord = storedEvents;
        detected = false;
        storedEvents.clear();
        Q_EMIT keyDoubleDetect(chord, false);
    }
}

bool DoubleKeyDetect::allPressed(const QList<input_event> &events) const
{
    return std::all_of(events.cbegin(), events.cend(),
                       [](const input_event &event) { return event.value != 0; });
}

bool DoubleKeyDetect::allReleased(const QList<input_event> &events) const
{
    return std::all_of(events.cbegin(), events.cend(),
                       [](const input_event &event) { return event.value == 0; });
}

void DoubleKeyDetect::reset()
{
    storedEvents.clear();
    pendingEvents.clear();
    detected = false;
}
