#ifndef VORN_WORKBENCH_LONGPRESSTIMING_H
#define VORN_WORKBENCH_LONGPRESSTIMING_H

#include <QMap>
#include <QPair>
#include <QString>

#include <functional>
#include <optional>

namespace Vorn::Workbench {

/// Follows what a session states about the timing of keys: the spans during which a key is timed,
/// and the moments at which a long press was due.
class LongPressTiming
{
public:
    struct Receiver
    {
        /// A key was timed. Called when the span ends.
        std::function<void(const QString &device, int code, qint64 from, qint64 to)> timed;
        /// The due time of a key was reached. Called at the next statement about the key.
        std::function<void(const QString &device, int code, qint64 due)> due;
    };

    explicit LongPressTiming(Receiver receiver);

    /// A key is timed at @p now, for a long press due at @p due.
    void start(const QString &device, int code, qint64 now, qint64 due);
    /// The key is no longer timed; a long press that is not due by now never will be.
    void end(const QString &device, int code, qint64 now);
    /// When it was stated that the key's next long press is due at @p due; nothing if it was not.
    std::optional<qint64> stated(const QString &device, int code, qint64 due) const;
    /// The same for all keys of a device that is gone.
    void endAll(const QString &device, qint64 now);
    /// The session ends, and with it all spans. Long presses due by then are reported.
    void finish(qint64 end);

private:
    struct Timed
    {
        qint64 from = 0;
        qint64 due = 0;
        qint64 stated = 0; ///< when the due time was
        bool isReported = false; ///< the due time
    };
    using Key = QPair<QString, int>;

    void reach(const Key &key, Timed *timed, qint64 now) const;

    const Receiver m_receiver;
    QMap<Key, Timed> m_timed;
};

} // namespace Vorn::Workbench

#endif
