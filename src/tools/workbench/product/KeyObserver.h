#ifndef VORN_WORKBENCH_KEYOBSERVER_H
#define VORN_WORKBENCH_KEYOBSERVER_H

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

/// Logs the records on their way into a key handler of the library, what its detectors make of
/// them, and what becomes of them. Whoever has the handler passes its calls through here.
class KeyObserver
{
public:
    /// What the library does when it is called, on the handler that is observed.
    using Invalidate = std::function<void()>;
    using ProcessEvent = std::function<void(const QList<input_event> &)>;

    struct Questions
    {
        /// Why a code has no command now.
        std::function<QString(int code)> unmapped;
        /// A record was treated as if other keys were down, which may have come up unheard.
        std::function<void()> otherKeysMattered;
    };

    /// @param handler must live longer, as must @p observation
    KeyObserver(BasicKeyInputHandler *handler, const ObservedDevice &seen, Observation *observation,
                Questions questions);
    KeyObserver(const KeyObserver &) = delete;
    KeyObserver &operator=(const KeyObserver &) = delete;

    void invalidate(const Invalidate &library);
    void processEvent(const QList<input_event> &events, const ProcessEvent &library);

    /// What the library believes about the device's keys.
    KeyStates states() const;

    /// Logs that nothing is timed any more: the handler is about to go.
    void endTiming();

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

    void process(const input_event &event, const ProcessEvent &library);
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

    BasicKeyInputHandler *const m_handler;
    const ObservedDevice m_device;
    Observation *const m_observation;
    const Questions m_questions;
    Answer *m_answer = nullptr;
    bool m_isTicking = false; ///< whether the timer's slot is running
    QMap<int, Stated> m_stated;
    qint64 m_chordSince = 0; ///< µs of the session
    QHash<int, qint64> m_forgotten; ///< keys whose press a reset ended, and when
};

} // namespace Vorn::Workbench

#endif
