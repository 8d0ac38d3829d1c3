#ifndef VORN_SIM_CALLLOG_H
#define VORN_SIM_CALLLOG_H

#include "SystemCall.h"

#include <QVector>

namespace Vorn::Sim {

/// Counts the calls that were served, and records them unless that is off. Guarded by the
/// subsystem's lock.
class CallLog
{
public:
    /// Counts a call.
    /// @param outcome what it returned, or a negative `errno`
    /// @return its record, for the caller to complete before the next call; null while recording is
    /// off
    SystemCall *add(SystemCall::Kind kind, long outcome);

    void setRecording(bool on);
    QVector<SystemCall> calls() const;
    CallCounts counts() const;

    /// Forgets the recorded calls; the counts stay.
    void clear();

    /// Forgets the counts as well.
    void reset();

private:
    bool m_isRecording = true;
    QVector<SystemCall> m_calls;
    CallCounts m_counts;
};

} // namespace Vorn::Sim

#endif
