#ifndef VORN_WORKBENCH_PENDINGEVENTS_H
#define VORN_WORKBENCH_PENDINGEVENTS_H

#include "KnownDevices.h"
#include "Scenario.h"
#include "Session.h"

#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// The published events that no expectation has taken yet, and how they compare with one.
/// Times of actions are in ms of the session.
class PendingEvents
{
public:
    /// @param deviceNodes N of /dev/input/eventN for each of Scenario::devices
    explicit PendingEvents(const QVector<int> &deviceNodes);

    /// Keeps an entry that is an event, and learns the names of devices from others.
    void add(const SessionEntry &entry);

    bool isEmpty() const { return m_events.isEmpty(); }
    void clear() { m_events.clear(); }

    /// Takes the oldest event, which there must be.
    /// @param action when the last action began
    /// @return nothing if it is the expected one, otherwise its text()
    std::optional<QString> take(const Step::ExpectEvent &expected, qint64 action);

    /// The oldest event, which there must be, for a message.
    QString text(qint64 action) const;

private:
    struct Event
    {
        qint64 time = 0; ///< µs
        EventPublished published;
        QString deviceName; ///< the kernel's
        QString mark; ///< where the name does not tell which device it is
    };

    bool isExpected(const Step::ExpectEvent &expected, const Event &found, qint64 action) const;

    const QVector<int> m_deviceNodes;
    KnownDevices m_devices;
    QVector<Event> m_events; ///< oldest first
};

} // namespace Vorn::Workbench

#endif
