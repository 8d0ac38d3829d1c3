#ifndef VORN_WORKBENCH_UNREADRECORDS_H
#define VORN_WORKBENCH_UNREADRECORDS_H

#include "LinuxInputListener.h"
#include "Observation.h"

#include <functional>

namespace Vorn::Workbench {

/// Logs the records of a listener that has no receiver. It takes a receiver's place only while the
/// listener reads, and does nothing else with the records, just as the library would drop them.
class UnreadRecords : public InputHandler
{
public:
    using Reason = std::function<QString()>;

    /// @param side EV_KEY or EV_SW: the listener's kind
    /// @param reason why nothing takes the records now
    UnreadRecords(const ObservedDevice &device, int side, SessionLog *log, Reason reason);

    /// Takes the records of @p listener, which may be null and must go before this does.
    void observe(LinuxInputListener *listener);

    void setId(const QString &) override { }
    void invalidate() override { }
    void processEvent(const QList<input_event> &events) override;

private:
    const ObservedDevice m_device;
    const int m_side;
    SessionLog *const m_log;
    const Reason m_reason;
};

} // namespace Vorn::Workbench

#endif
