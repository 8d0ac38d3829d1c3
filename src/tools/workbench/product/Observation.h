#ifndef VORN_WORKBENCH_OBSERVATION_H
#define VORN_WORKBENCH_OBSERVATION_H

#include <QString>
#include <QVector>

#include <linux/input.h>

#include <optional>

namespace Vorn::Workbench {

class SessionLog;

/// The record being processed: whatever is published in the meantime comes from it.
struct Cause
{
    QString device;
    int type = 0; ///< EV_KEY or EV_SW
    QVector<int> codes; ///< the record's, or both of a chord
    qint64 stamp = 0; ///< µs since the epoch; 0 for a position that was asked for
    /// The first key of the chord that the record, a press, completes: a release that is published
    /// now is this key's.
    std::optional<int> withdrawn;
};

/// Sets the cause for as long as it lives, and restores the previous one: an event may make the
/// product do something that publishes further events.
class CauseScope
{
public:
    CauseScope(std::optional<Cause> *cause, Cause value);
    ~CauseScope();
    CauseScope(const CauseScope &) = delete;
    CauseScope &operator=(const CauseScope &) = delete;

private:
    std::optional<Cause> *m_cause;
    std::optional<Cause> m_before;
};

/// What the observed handlers share.
struct Observation
{
    SessionLog *log = nullptr;
    std::optional<Cause> *cause = nullptr;
    /// A node has two listeners, and one of them is enough to log its records.
    bool logsRecords = false;
};

/// The time stamp of a record, µs since the epoch.
qint64 stampOf(const input_event &event);

/// Logs a record on its way into the library.
void logRecord(const Observation &observation, const QString &device, const input_event &event);

} // namespace Vorn::Workbench

#endif
