#include "UnreadRecords.h"

#include "InputProbe.h"

#include <utility>

namespace Vorn::Workbench {

UnreadRecords::UnreadRecords(const ObservedDevice &device, int side, SessionLog *log, Reason reason)
    : m_device(device)
    , m_side(side)
    , m_log(log)
    , m_reason(std::move(reason))
{ }

// Only while it reads: to the library the listener has no receiver, which is what a selection may
// find and change at any other time.
void UnreadRecords::observe(LinuxInputListener *listener)
{
    if (!listener)
        return;
    InputProbe::surroundReads(
        listener,
        [this, listener] {
            if (!InputProbe::receiver(*listener))
                listener->setHandler(this);
        },
        [this, listener] {
            if (InputProbe::receiver(*listener) == this)
                listener->setHandler(nullptr);
        });
}

void UnreadRecords::processEvent(const QList<input_event> &events)
{
    const SessionHold hold(m_log);
    for (const input_event &event : events) {
        if (takeRecord(m_log, m_device, m_side, event))
            logOutcome(m_log, m_device, event, RecordOutcome::What::Unread, m_reason());
    }
}

} // namespace Vorn::Workbench
