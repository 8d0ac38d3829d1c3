#ifndef VORN_WORKBENCH_BENCH_H
#define VORN_WORKBENCH_BENCH_H

#include "DeviceDescription.h"
#include "Recording.h"
#include "Session.h"

#include <QString>
#include <QVector>

#include <functional>
#include <optional>

namespace Vorn::Workbench {

/// What a scenario is run on: simulated devices, the product that reads them, and the time that
/// both live in. What happens goes to whoever made the bench, as entries of a session.
///
/// Nodes are N of /dev/input/eventN, times are ms of the session. Once failure() says something,
/// nothing else has an effect.
class Bench
{
public:
    using Condition = std::function<bool()>;

    virtual ~Bench() = default;

    /// Why the product can be run no further; empty while it can.
    virtual QString failure() const = 0;

    virtual qint64 now() const = 0;
    /// Runs all that is ready, and what that leads to at once.
    virtual void settle() = 0;
    /// Moves time to @p end, or waits for it.
    virtual void runUntil(qint64 end) = 0;
    /// The same, but no further than to the event that makes @p condition hold.
    virtual void runUntil(qint64 end, const Condition &condition) = 0;

    /// Adds an entry of the scenario's own to the session.
    virtual void log(const Remark &remark) = 0;
    virtual void log(const ExpectationChecked &checked) = 0;

    virtual void plug(int node, const Sim::DeviceDescription &device) = 0;
    virtual void unplug(int node, bool losingRecords) = 0;
    virtual void replace(int node, const Sim::DeviceDescription &device) = 0;
    virtual void setMode(int node, mode_t mode) = 0;
    virtual void setInputDirectory(bool exists) = 0;

    /// Changes keys in one packet, as a driver would report them.
    /// @return the first code that the kernel would not pass on; then nothing is sent
    virtual std::optional<int> changeKeys(int node, const QVector<int> &codes, int value) = 0;
    /// Releases the keys that are down, in one packet.
    virtual void releaseKeys(int node) = 0;
    /// @return whether the kernel would pass it on
    virtual bool setSwitch(int node, int code, bool on) = 0;
    /// Sends records as they are, stamped with the wall clock and @p offset ms.
    virtual void send(int node, const QVector<RecordedEvent> &records, qint64 offset) = 0;

    virtual void stepWallClock(qint64 delta) = 0;

    virtual void select(const QString &identifier) = 0;
    virtual QString identifier() = 0;
};

} // namespace Vorn::Workbench

#endif
