#ifndef VORN_WORKBENCH_LOGDETECTORS_H
#define VORN_WORKBENCH_LOGDETECTORS_H

#include "LibraryMessage.h"
#include "LogRecord.h"

#include <QHash>
#include <QMap>
#include <QPair>
#include <QSet>
#include <QString>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>

namespace Vorn::Workbench {

/// What a log says of the chord detector of one handler.
struct LogDetector
{
    struct Key
    {
        int code = 0;
        int value = 0; ///< of its last record
    };

    LogOriginPtr origin;
    QString identifier; ///< under which the handler took the records
    QVector<Key> keys; ///< in order of the presses
    bool isChord = false;
    qint64 chordSince = 0;
    /// Presses of keys that are down and for which nothing has been published so far.
    QMap<int, QVector<LogRecordPtr>> waiting;
    QHash<int, qint64> forgotten; ///< keys whose press a selection has ended, and when
    /// Forgotten keys whose release the handler has not got since: they may be timed still.
    QSet<int> leftTimed;

    int indexOf(int code) const;
    QVector<int> codes() const;
    QVector<int> codesDown() const;
    /// Those that may get a long press.
    QVector<int> codesTimed() const;
    bool isIdle() const
    {
        return keys.isEmpty() && waiting.isEmpty() && forgotten.isEmpty() && leftTimed.isEmpty();
    }
};

using LogDetectorPtr = std::shared_ptr<LogDetector>;

/// The detectors of a process. A line of a detector does not say which one it is of: the origin of
/// the record tells, or else the keys that it has stored. What a key publishes is remembered beyond
/// its detector.
class LogDetectors
{
public:
    /// The one that has stored the keys of a line after a record of @p code.
    /// @param known whether it is known which device the record is of
    LogDetectorPtr forKeys(const LogOriginPtr &origin, bool known, const QString &identifier,
                           const Said::KeysStored &stored, int code);

    /// The one that has dropped a record because of a chord; null if none is known.
    LogDetectorPtr forThirdKey(const LogOriginPtr &origin, const QString &identifier) const;
    /// The one that has forgotten the press of a key, or has it down; null if there is none.
    LogDetectorPtr forRelease(const LogOriginPtr &origin, int code) const;

    /// A key has published a command alone.
    void learn(const LogDetector &detector, int code, InputEvent::Command command);
    /// What a key has published before, alone and for the same handler.
    std::optional<InputEvent::Command> commandOf(const LogDetector &detector, int code) const;

    const QVector<LogDetectorPtr> &all() const { return m_detectors; }
    /// Without those that have nothing to tell, and those of a device that is gone.
    void forgetIdle();
    void forget(const std::function<bool(const LogOrigin &)> &isGone);

private:
    LogDetectorPtr added(const LogOriginPtr &origin, const QString &identifier);

    QVector<LogDetectorPtr> m_detectors;
    /// What has come of single keys, by device, identifier and code.
    QHash<QPair<QString, int>, InputEvent::Command> m_commands;
};

/// Whether a detector, with the keys it has, can store those of a line after a record of @p code.
bool leadsTo(const LogDetector &detector, const Said::KeysStored &stored, int code);

/// Whether two sources may be the same device.
bool mayBeSame(const LogOrigin &one, const LogOrigin &other);

} // namespace Vorn::Workbench

#endif
