#ifndef VORN_WORKBENCH_OBSERVEDHANDLERS_H
#define VORN_WORKBENCH_OBSERVEDHANDLERS_H

#include "BasicInputHandler.h"
#include "KeyProcessing.h"
#include "Profile.h"
#include "Session.h"
#include "SessionLog.h"

#include <QHash>
#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// The record that is being processed: what is published meanwhile comes from it.
struct Cause
{
    QString device;
    int type = 0; ///< EV_KEY or EV_SW
    QVector<int> codes; ///< of the record, or both of a chord
    qint64 stamp = 0; ///< µs since the epoch; 0 for a position that was asked for
    /// The first key of a chord that the record, a press, begins: what is published as released
    /// is this one.
    std::optional<int> withdrawn;
};

/// What observed handlers share.
struct Observation
{
    SessionLog *log = nullptr;
    std::optional<Cause> *cause = nullptr;
    bool tellsRecords = false; ///< one of a node's two listeners is enough to tell of its records
};

/// The library's key handler, which tells a SessionLog of the records on their way into it and of
/// what its detectors make of them.
///
/// The detectors belong to the handler. What they do is told by a detector of the same class that
/// is given the same records, and by the rules of long presses.
class ObservedKeyHandler : public BasicKeyInputHandler
{
    Q_OBJECT

public:
    ObservedKeyHandler(const QString &path, const QString &name, const Observation &observation);

    /// Makes the registrations of a profile. The listener must be attached.
    void registerAll(const HandlerProfile &handlers);

    void setTellsRecords(bool tells) { m_observation.tellsRecords = tells; }

    void invalidate() override;
    void processEvent(const QList<input_event> &events) override;

    /// Whether the long press of a key of this handler is due by @p now (ms since the epoch) and
    /// is reported as @p command. If several are, the one that was due first. Its next timeout is
    /// measured from now.
    struct DueKey
    {
        int code = 0;
        qint64 due = 0; ///< ms since the epoch
    };
    std::optional<DueKey> dueKey(InputEvent::Command command, qint64 now) const;
    void longPressReported(int code, qint64 now);

private:
    struct Timed
    {
        qint64 due = 0; ///< ms since the epoch
        int count = 1; ///< number of the notification that is waited for
    };

    void registerKeyMapping(const KeyMapping &key);
    void onKeyDoubleDetect(const QList<input_event> &keys, bool fake);
    void onChord(const QList<input_event> &keys);
    void time(const input_event &event);
    void advance(int code, Timed *timed, qint64 from);
    void tell(DetectorStep::What what, const QVector<int> &keys, qint64 due = 0,
              bool isMapped = false);

    const QString m_device;
    Observation m_observation;
    DoubleKeyDetect m_doubleKeyDetect;
    QVector<int> m_chord; ///< the keys of the chord in progress
    bool m_isAnswered = false; ///< whether the detector has answered the present record
    QHash<int, KeyMapping> m_keys;
    QHash<int, Timed> m_timed;
    QHash<int, int> m_stages;
};

/// The library's switch handler, which tells a SessionLog of the records on their way into it.
class ObservedSwitchHandler : public BasicSwInputHandler
{
    Q_OBJECT

public:
    ObservedSwitchHandler(const QString &path, const QString &name, const Observation &observation);

    void registerAll(const HandlerProfile &handlers);

    void setTellsRecords(bool tells) { m_observation.tellsRecords = tells; }

    void processEvent(const QList<input_event> &events) override;

private:
    const QString m_device;
    Observation m_observation;
};

} // namespace Vorn::Workbench

#endif
