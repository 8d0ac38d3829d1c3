#ifndef VORN_WORKBENCH_LOGOUTCOMES_H
#define VORN_WORKBENCH_LOGOUTCOMES_H

#include "LogDetectors.h"
#include "LogQueue.h"
#include "LogRead.h"
#include "Session.h"

#include <QString>
#include <QStringList>
#include <QVector>

namespace Vorn::Workbench {

/// Tells what becomes of records, and the steps of the detectors.
///
/// ```
/// the record in hand ─▶ an event: published
///                    ─▶ a press without one waits at its detector ─▶ its release, a long press or
///                       a pair says what became of it; another press, or the end, leaves it open
/// ```
class LogOutcomes
{
public:
    LogOutcomes(LogQueue *queue, const LogDetectors *detectors);

    void step(qint64 time, DetectorStep::What what, const LogDetector &detector,
              const QVector<int> &keys, bool isMapped = false);
    /// A pair begins, which is told once.
    /// @param isMapped whether it has a command
    void tellChord(LogHand *hand, bool isMapped);

    void tell(const LogHand &hand, RecordOutcome::What what, const QString &reason,
              LogQueue::Doubt doubt = LogQueue::Doubt::None);
    /// Tells what became of the record in hand, of which nothing more comes.
    void finishHand(LogRead *read);

    /// Tells what became of the presses of a key that nothing had been published for.
    void tellWaiting(qint64 time, const LogDetectorPtr &detector, int code,
                     RecordOutcome::What what, const QString &reason,
                     LogQueue::Doubt doubt = LogQueue::Doubt::None);
    /// Nothing more is known of what waits at a detector.
    void leaveWaiting(qint64 time, const LogDetectorPtr &detector, const QString &reason);
    /// Before another press of a key: nothing more is known of the one before.
    void leaveWaiting(qint64 time, const LogOrigin &origin, int code);

private:
    void tellSingle(LogHand *hand);
    void tellPair(LogHand *hand);
    QString openPairReason(const LogHand &hand) const;
    static QString openEventReason(const LogHand &hand);

    LogQueue *const m_queue;
    const LogDetectors *const m_detectors;
};

/// For LogQueue, which adds the record.
RecordOutcome outcomeOf(RecordOutcome::What what, const QString &reason,
                        const QStringList &events = {});

} // namespace Vorn::Workbench

#endif
