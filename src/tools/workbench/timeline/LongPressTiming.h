#ifndef VORN_WORKBENCH_LONGPRESSTIMING_H
#define VORN_WORKBENCH_LONGPRESSTIMING_H

#include <QMap>
#include <QPair>
#include <QSet>
#include <QString>

#include <optional>

namespace Vorn::Workbench {

class LaneTable;

/// Follows the long-press detectors of a session and adds what they do to the lanes of the keys:
/// the spans during which a key is timed, and a mark where its long press is due.
class LongPressTiming
{
public:
    /// @param lanes must live longer
    explicit LongPressTiming(LaneTable *lanes);

    /// A key is timed at @p now, for a long press due at @p due.
    void start(const QString &device, int code, qint64 now, qint64 due);
    /// The detector no longer times the key; a long press that is not due by now never will be.
    void cancel(const QString &device, int code, qint64 now);
    /// The key's device was removed.
    void stop(const QString &device, int code, qint64 now);
    /// The session ends, and with it all spans. Long presses due by then are marked.
    void finish(qint64 end);

private:
    /// The timer of a device's detector, which all its keys share.
    struct Timer
    {
        qint64 start = 0;
        qint64 lastStop = 0;
        QSet<int> keys;
    };

    void startSpan(const QString &device, int code, qint64 now);
    void endSpan(const QString &device, int code, qint64 end);
    void setDue(const QString &device, int code, qint64 now, std::optional<qint64> due);
    void markDue(const QString &device, int code, qint64 due);

    LaneTable *const m_lanes;
    QMap<QString, Timer> m_timers;
    QMap<QPair<QString, int>, qint64> m_due; ///< of long presses not yet marked
};

} // namespace Vorn::Workbench

#endif
