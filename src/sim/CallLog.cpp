#include "CallLog.h"

namespace Vorn::Sim {

namespace {

quint64 &countOf(CallCounts &counts, SystemCall::Kind kind)
{
    switch (kind) {
    case SystemCall::Kind::Open:
        return counts.opens;
    case SystemCall::Kind::Read:
        return counts.reads;
    case SystemCall::Kind::Ioctl:
        return counts.ioctls;
    case SystemCall::Kind::Close:
        break;
    }
    return counts.closes;
}

} // namespace

SystemCall *CallLog::add(SystemCall::Kind kind, long outcome)
{
    ++countOf(m_counts, kind);
    if (!m_isRecording)
        return nullptr; // without an allocation, so that benchmarks can count calls
    SystemCall call;
    call.kind = kind;
    call.result = outcome < 0 ? -1 : outcome;
    call.error = outcome < 0 ? static_cast<int>(-outcome) : 0;
    m_calls.append(call);
    return &m_calls.last();
}

void CallLog::setRecording(bool on)
{
    m_isRecording = on;
}

QVector<SystemCall> CallLog::calls() const
{
    return m_calls;
}

CallCounts CallLog::counts() const
{
    return m_counts;
}

void CallLog::clear()
{
    m_calls.clear();
}

void CallLog::reset()
{
    m_calls.clear();
    m_counts = {};
}

} // namespace Vorn::Sim
