#include "LogOutcomes.h"

#include "CommandNames.h"
#include "EventNames.h"
#include "SessionWords.h"

#include <utility>

namespace Vorn::Workbench {

namespace {

using Kind = LogHand::Kind;
using Outcome = RecordOutcome::What;
using Step = DetectorStep::What;
using Doubt = LogQueue::Doubt;

} // namespace

RecordOutcome outcomeOf(Outcome what, const QString &reason, const QStringList &events)
{
    RecordOutcome outcome;
    outcome.what = what;
    outcome.reason = reason;
    outcome.events = events;
    return outcome;
}

LogOutcomes::LogOutcomes(LogQueue *queue, const LogDetectors *detectors)
    : m_queue(queue)
    , m_detectors(detectors)
{ }

void LogOutcomes::step(qint64 time, Step what, const LogDetector &detector,
                       const QVector<int> &keys, bool isMapped)
{
    DetectorStep step;
    step.what = what;
    step.keys = keys;
    step.mapped = isMapped;
    step.identifier = detector.identifier;
    m_queue->add(time, step, detector.origin);
}

void LogOutcomes::tellChord(LogHand *hand, bool isMapped)
{
    if (std::exchange(hand->isChordTold, true))
        return;
    step(hand->time, Step::ChordFound, *hand->detector, hand->codes, isMapped);
}

void LogOutcomes::tell(const LogHand &hand, Outcome what, const QString &reason, Doubt doubt)
{
    if (hand.record)
        m_queue->addOutcome(hand.time, hand.record, outcomeOf(what, reason, hand.events), doubt);
}

void LogOutcomes::tellWaiting(qint64 time, const LogDetectorPtr &detector, int code, Outcome what,
                              const QString &reason, Doubt doubt)
{
    const QVector<LogRecordPtr> records = detector->waiting.take(code);
    for (const LogRecordPtr &record : records)
        m_queue->addOutcome(time, record, outcomeOf(what, reason), doubt);
}

void LogOutcomes::leaveWaiting(qint64 time, const LogDetectorPtr &detector, const QString &reason)
{
    const QList<int> codes = detector->waiting.keys();
    for (const int code : codes)
        tellWaiting(time, detector, code, Outcome::Open, reason);
}

void LogOutcomes::leaveWaiting(qint64 time, const LogOrigin &origin, int code)
{
    for (const LogDetectorPtr &detector : m_detectors->all()) {
        if (detector->waiting.contains(code) && mayBeSame(*detector->origin, origin))
            tellWaiting(time, detector, code, Outcome::Open,
                        QStringLiteral("nothing was published for it before the key was pressed "
                                       "again or repeated at ")
                            + timeText(time));
    }
}

void LogOutcomes::finishHand(LogRead *read)
{
    if (!read->hand)
        return;
    LogHand hand = *std::exchange(read->hand, std::nullopt);
    if (hand.isPair())
        tellPair(&hand);
    else
        tellSingle(&hand);
}

void LogOutcomes::tellSingle(LogHand *hand)
{
    if (!hand->openEvent.isEmpty() && hand->events.isEmpty()) {
        if (hand->detector)
            tellWaiting(hand->time, hand->detector, hand->code, Outcome::Open,
                        openEventReason(*hand));
        tell(*hand, Outcome::Open, openEventReason(*hand));
        return;
    }
    if (!hand->events.isEmpty()) {
        // A deferred key publishes its press with the release.
        if (hand->value == 0 && hand->detector)
            tellWaiting(hand->time, hand->detector, hand->code, Outcome::Held,
                        QStringLiteral("held back until the release"));
        tell(*hand, Outcome::Published, hand->click ? openEventReason(*hand) : QString());
        return;
    }
    // A press without an event is held back, or has no command: its release will show.
    if (hand->value != 0) {
        if (hand->record && hand->detector)
            hand->detector->waiting[hand->code] += hand->record;
        return;
    }
    const bool wasSilent = hand->detector && hand->detector->waiting.contains(hand->code);
    const QString reason = wasSilent
        ? QStringLiteral("nothing was published, neither for the press nor for the release: it has "
                         "no command")
        : QStringLiteral("nothing was published for the release");
    if (hand->detector)
        tellWaiting(hand->time, hand->detector, hand->code, Outcome::Unmapped, reason,
                    Doubt::Unmapped);
    tell(*hand, Outcome::Unmapped, reason, Doubt::Unmapped);
}

void LogOutcomes::tellPair(LogHand *hand)
{
    const QString pair = joinedKeys(hand->codes);
    if (hand->kind == Kind::ChordBegun) {
        // Nothing came after the withdrawal of the first key.
        const bool isCut = hand->keyLines == 1;
        if (isCut && hand->events.isEmpty()) {
            tell(*hand, Outcome::Dropped,
                 QStringLiteral("the handlers were selected again before the pair was complete"));
            return;
        }
        if (!isCut)
            tellChord(hand, false);
    }
    const QString second = keyName(hand->codes.last());
    if (hand->events.isEmpty() && !hand->openEvent.isEmpty())
        tell(*hand, Outcome::Open, openEventReason(*hand));
    else if (hand->events.isEmpty())
        tell(*hand, Outcome::Unmapped,
             QStringLiteral("%1 have no command together, nor has %2 one").arg(pair, second),
             Doubt::Unmapped);
    else
        tell(*hand, Outcome::Published, hand->hasPairEvent ? openPairReason(*hand) : QString());
}

/// Where the events of a pair come from is marked as open, with what there is to tell.
QString LogOutcomes::openPairReason(const LogHand &hand) const
{
    const int second = hand.codes.last();
    const QString reason = QStringLiteral("the log does not say whether for %1 or for %2 alone")
                               .arg(joinedKeys(hand.codes), keyName(second));
    const auto alone = m_detectors->commandOf(*hand.detector, second);
    return alone ? reason + QStringLiteral(", which published %1 before").arg(commandName(*alone))
                 : reason;
}

QString LogOutcomes::openEventReason(const LogHand &hand)
{
    if (hand.openEvent.isEmpty())
        return {};
    return QStringLiteral("the log does not say whether %1 is of this record or of another one: a "
                          "slot ran an event loop")
        .arg(hand.openEvent);
}

} // namespace Vorn::Workbench
