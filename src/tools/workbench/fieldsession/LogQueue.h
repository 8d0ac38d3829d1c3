#ifndef VORN_WORKBENCH_LOGQUEUE_H
#define VORN_WORKBENCH_LOGQUEUE_H

#include "LogCoverage.h"
#include "LogRecord.h"
#include "Session.h"

#include <QHash>
#include <QString>

#include <deque>
#include <functional>
#include <optional>

namespace Vorn::Workbench {

/// The entries of a session that is read from a log, in their order. They are kept back until it is
/// known which device they are of, but not for ever; a record that two readers have logged is
/// passed on once.
class LogQueue
{
public:
    using Sink = std::function<void(const SessionEntry &)>;

    /// What cannot be said before it is known which lines the log has.
    enum class Doubt {
        None,
        Unread, ///< no line of a handler follows the record
        Unmapped, ///< no event follows the record
    };

    LogQueue(const LogCoverage *coverage, Sink sink);

    void add(qint64 time, const decltype(SessionEntry::what) &what,
             const LogOriginPtr &origin = nullptr);
    /// @param stamp see RecordRead
    void addRecord(const LogRecordPtr &record, qint64 stamp);
    void addOutcome(qint64 time, const LogRecordPtr &record, const RecordOutcome &outcome,
                    Doubt doubt = Doubt::None);

    /// Passes on what can be passed on.
    void passOn();
    /// Passes on everything, known or not.
    void finish();

    /// Entries are kept back at the beginning, too, until it has shown which lines the log has.
    bool hasBegun() const { return m_hasBegun; }
    bool mayBegin() const;
    void begin() { m_hasBegun = true; }

private:
    struct Item
    {
        SessionEntry entry;
        LogOriginPtr origin;
        LogRecordPtr record;
        Doubt doubt = Doubt::None;
    };

    /// The records that one reader of a device has logged and the other has not.
    struct Ahead
    {
        std::deque<LogRecordPtr> records;
        std::optional<int> reader;
    };

    void passOn(Item *item);
    bool isTwin(const LogRecordPtr &record);
    bool mayTell(const Item &item);
    void resolve(Item *item) const;

    const LogCoverage *const m_coverage;
    const Sink m_sink;
    std::deque<Item> m_items;
    QHash<QString, Ahead> m_ahead; ///< by path of the device
    qint64 m_time = 0;
    bool m_hasBegun = false;
};

} // namespace Vorn::Workbench

#endif
