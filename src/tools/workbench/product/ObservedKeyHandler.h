#ifndef VORN_WORKBENCH_OBSERVEDKEYHANDLER_H
#define VORN_WORKBENCH_OBSERVEDKEYHANDLER_H

#include "BasicInputHandler.h"
#include "InputProbe.h"
#include "Observation.h"
#include "Session.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>

namespace Vorn::Workbench {

/// The library's key handler, which logs the records on their way into it, what its detectors make
/// of them, and what becomes of them.
class ObservedKeyHandler : public BasicKeyInputHandler
{
    Q_OBJECT

public:
    /// Why a code has no command now.
    using Unmapped = std::function<QString(int code)>;

    ObservedKeyHandler(const ObservedDevice &seen, Observation *observation, Unmapped unmapped);

    void invalidate() override;
    void processEvent(const QList<input_event> &events) override;

    /// What the library believes about the device's keys.
    KeyStates states() const;

    /// Logs that nothing is timed any more: the handler is about to go.
    void endTiming();

Q_SIGNALS:
    /// A record was treated as if other keys were down, which may have come up unheard.
    void otherKeysMattered();

private:
    /// What the chord detector answered to the record in progress.
    struct Answer
    {
        bool isGiven = false;
        QList<input_event> keys; ///< of the last one
        bool isMapped = false; ///< whether these, if two, have a command together
    };

    /// What was said last about a key's long press.
    struct Stated
    {
        std::optional<qint64> due; ///< ms since the epoch; none: it has come, or never will
        qint64 time = 0; ///< the same in µs of the session
        bool hasEnded = false;
    };

    void process(const input_event &event);
    void beginKeys(const QList<input_event> &keys, bool fake);
    /// @return whether the two have a command
    bool beginChord(const QList<input_event> &keys);
    void beginLongPress(int code);
    void end();
    QMap<int, InputProbe::Timing> timings() const;
    void stateTiming();
    void endTiming(int code);
    void tell(const input_event &event, const Answer &answer, const QStringList &published);
    void tellUnanswered(const input_event &event);
    void tellUnpublished(const input_event &event, const QList<input_event> &keys);
    QString unmappedReason(int code) const;
    QString heldReason(int code) const;
    QString blockedReason() const;
    QVector<int> storedCodes() const;
    void log(DetectorStep::What what, const QVector<int> &keys);
    void log(DetectorStep step);
    void log(const input_event &event, RecordOutcome::What what, const QString &reason);

    const ObservedDevice m_device;
    Observation *const m_observation;
    const Unmapped m_unmapped;
    Answer *m_answer = nullptr;
    bool m_isTicking = false; ///< whether the timer's slot is running
    QMap<int, Stated> m_stated;
    qint64 m_chordSince = 0; ///< µs of the session
    QHash<int, qint64> m_forgotten; ///< keys whose press a reset ended, and when
};

} // namespace Vorn::Workbench

#endif
