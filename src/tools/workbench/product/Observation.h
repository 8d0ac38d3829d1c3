#ifndef VORN_WORKBENCH_OBSERVATION_H
#define VORN_WORKBENCH_OBSERVATION_H

#include "BasicInputHandler.h"
#include "Input.h"
#include "SessionLog.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <linux/input.h>

#include <functional>
#include <optional>

namespace Vorn::Workbench {

/// What the library is processing: events that are published in the meantime come from it.
struct Cause
{
    QString device;
    int type = 0; ///< EV_KEY or EV_SW
    QVector<int> codes; ///< one key or switch, or both keys of a chord
    /// µs since the epoch, from which latency counts: the record's stamp, or when the long press
    /// was due. None for a position that was asked for.
    std::optional<qint64> since;
    /// Called before an event is logged, so that what led to it is logged first.
    std::function<void()> beforeEvent;
};

/// What everything that observes the library in one product shares.
///
/// Causes nest: a slot of the product may run an event loop, in which further records arrive.
class Observation
{
public:
    explicit Observation(SessionLog *log)
        : m_log(log)
    { }

    SessionLog *log() const { return m_log; }

    void begin(const Cause &cause) { m_causes.append({cause, {}, false}); }
    /// Begins another cause for a part of what the current one does.
    void beginPart(const Cause &cause) { m_causes.append({cause, {}, true}); }
    /// The cause begun last; one with nothing in it if there is none.
    Cause current() const { return m_causes.isEmpty() ? Cause() : m_causes.last().cause; }
    /// Ends the cause begun last. What a part has published, the whole has published.
    /// @return what it published, "StartPlay KeyPressed"
    QStringList end();

    /// Logs an event with its cause.
    void publish(const InputEvent &event);

private:
    struct Active
    {
        Cause cause;
        QStringList events;
        bool isPart = false;
    };

    SessionLog *const m_log;
    QVector<Active> m_causes;
};

/// A device as those who observe it know it.
struct ObservedDevice
{
    QString path;
    QString name;
    InputEvent::Bus bus = InputEvent::Bus::NoBus;
    bool readsKeys = false;
    bool readsSwitches = false;

    /// Both listeners of a node read all its records, and one of them is enough to log these.
    bool isLoggedBy(int side) const { return side == (readsKeys ? EV_KEY : EV_SW); }
};

/// A device that has arrived at a manager.
/// @param name the kernel's
ObservedDevice observedDevice(const BasicInputHandler &manager, const QString &path,
                              const QString &name);

/// The time stamp of a record, µs since the epoch.
qint64 stampOf(const input_event &event);

/// Logs a record on its way into the library, and what becomes of one that it does not take.
/// @param side EV_KEY or EV_SW: which of the node's listeners read it
/// @return whether it is a record for that side
bool takeRecord(SessionLog *log, const ObservedDevice &device, int side, const input_event &event);

/// Logs what became of a record.
void logOutcome(SessionLog *log, const ObservedDevice &device, const input_event &event,
                RecordOutcome::What what, const QString &reason, const QStringList &events = {});

} // namespace Vorn::Workbench

#endif
