#ifndef VORN_WORKBENCH_LONGPRESSMIRROR_H
#define VORN_WORKBENCH_LONGPRESSMIRROR_H

#include "Profile.h"
#include "Session.h"

#include <QHash>

#include <linux/input.h>

#include <functional>
#include <optional>

namespace Vorn::Workbench {

/// Works out what a handler's long-press detector is waiting for, which the detector itself does
/// not say: it follows the same rules, on the same registrations and records.
class LongPressMirror
{
public:
    /// @param due ms since the epoch; LongPressDue only
    using Tell = std::function<void(DetectorStep::What what, int code, qint64 due)>;

    struct DueKey
    {
        int code = 0;
        qint64 due = 0; ///< ms since the epoch
    };

    /// @param tell called with LongPressDue and LongPressEnded
    explicit LongPressMirror(Tell tell);

    /// Follows a registration that applies to the device's bus.
    void registerKey(const KeyMapping &key);

    /// Takes a record as the chord detector passes it on.
    void process(const input_event &event);

    /// The key whose long press is due by @p now (ms since the epoch) and is reported as
    /// @p command; of several the one that was due first.
    std::optional<DueKey> dueKey(InputEvent::Command command, qint64 now) const;

    /// The long press of @p code was published: its next timeout runs from @p now.
    void reported(int code, qint64 now);

private:
    struct Hold
    {
        qint64 due = 0; ///< ms since the epoch
        int count = 1; ///< number of the notification being waited for
    };

    void advance(int code, Hold *hold, qint64 from);

    const Tell m_tell;
    QHash<int, KeyMapping> m_keys;
    QHash<int, Hold> m_holds; ///< of the keys that are down
    QHash<int, int> m_stages; ///< index of the timeout; outlives a hold
};

} // namespace Vorn::Workbench

#endif
