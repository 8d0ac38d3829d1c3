#include "LogKeys.h"

#include "EventNames.h"
#include "SessionWords.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

using Kind = LogHand::Kind;
using Outcome = RecordOutcome::What;
using Step = DetectorStep::What;

} // namespace

LogKeys::LogKeys(const LineTime *time, LogDetectors *detectors, LogReads *reads, LogQueue *queue,
                 LogOutcomes *outcomes)
    : m_time(time)
    , m_detectors(detectors)
    , m_reads(reads)
    , m_queue(queue)
    , m_outcomes(outcomes)
{ }

void LogKeys::take(const Said::FoundAlready &found)
{
    m_found = found;
}

void LogKeys::take(const Said::KeysStored &stored)
{
    const bool isFound = m_found.has_value();
    const int code = isFound ? m_found->code : stored.keys.last().code;
    m_found.reset();
    const QVector<Said::KeysStored::Key>::const_iterator key =
        std::find_if(stored.keys.begin(), stored.keys.end(),
                     [code](const auto &other) { return other.code == code; });
    if (key == stored.keys.end()) {
        m_queue->add(m_time->now,
                     Remark{QStringLiteral("lines of the chord detector contradict each "
                                           "other here: some are missing")});
        return;
    }
    const LogReads::Cause cause =
        m_reads->causeOf(code, key->isPress ? KeyValue::Press : KeyValue::NoPress);
    const int value = cause.record ? cause.record->value : (key->isPress ? 1 : 0);
    const bool isKnown = cause.origin->descriptor() || cause.origin->isKnown();
    const LogDetectorPtr detector =
        m_detectors->forKeys(cause.origin, isKnown, cause.read->identifier, stored, code);
    if (value != 0)
        m_outcomes->leaveWaiting(m_time->now, *cause.origin, code);
    if (!cause.origin->descriptor() || !detector->origin->descriptor())
        LogOrigin::join(cause.origin, detector->origin);
    LogHand hand;
    hand.kind = store(detector, stored, code, value);
    if (isFound && stored.keys.size() > 1 && hand.kind == Kind::ChordBegun)
        hand.kind = Kind::ChordPart;
    hand.detector = detector;
    hand.code = code;
    hand.value = value;
    hand.codes = hand.kind == Kind::Single ? QVector<int>{code} : detector->codes();
    m_reads->hold(cause, hand);
    tellStored(cause.read);
}

/// Tells what the record in hand makes of the keys of its detector.
void LogKeys::tellStored(LogRead *read)
{
    const LogHand hand = *read->hand;
    const LogDetectorPtr detector = hand.detector;
    if (hand.kind == Kind::ChordPart) {
        m_outcomes->tell(hand, Outcome::Chord,
                         (hand.value == 0 ? QStringLiteral("%1 are a pair until both are up")
                                          : QStringLiteral("%1 are a pair already"))
                             .arg(joinedKeys(hand.codes)));
        read->hand.reset();
    } else if (hand.kind == Kind::ChordBegun) {
        detector->chordSince = m_time->now;
        detector->leftTimed.remove(hand.codes.first());
        m_outcomes->step(m_time->now, Step::FirstKeyWithdrawn, *detector, {hand.codes.first()});
        m_outcomes->tellWaiting(
            m_time->now, detector, hand.codes.first(), Outcome::Open,
            QStringLiteral("nothing was published for it: held back, or it has no command "
                           "of its own; first key of a pair, withdrawn at ")
                + timeText(m_time->now));
    } else if (hand.kind == Kind::ChordEnded) {
        m_outcomes->step(m_time->now, Step::ChordReleased, *detector, hand.codes);
        detector->keys.clear();
    }
    detector->isChord = hand.kind == Kind::ChordBegun || hand.kind == Kind::ChordPart;
    if (hand.kind == Kind::Single && hand.value == 0) {
        detector->keys.clear();
        detector->leftTimed.remove(hand.code);
    }
}

/// Updates what is known of a detector. @return what the line means
LogHand::Kind LogKeys::store(const LogDetectorPtr &detector, const Said::KeysStored &stored,
                             int code, int value)
{
    const int before = detector->indexOf(code);
    const bool wasDown = before >= 0 && detector->keys[before].value != 0;
    if (!leadsTo(*detector, stored, code) && !detector->keys.isEmpty())
        m_queue->add(m_time->now,
                     Remark{QStringLiteral("%1 had %2 down, and now has not: lines are missing, or "
                                           "a selection that the log does not show")
                                .arg(detector->origin->text(), joinedKeys(detector->codesDown()))});
    else if (wasDown && value == 1)
        m_queue->add(m_time->now,
                     Remark{QStringLiteral("%1 is pressed although it was down: the release in "
                                           "between was lost")
                                .arg(keyName(code))});
    const bool wasChord = detector->isChord;
    QVector<LogDetector::Key> keys;
    for (const Said::KeysStored::Key &key : stored.keys) {
        const int at = detector->indexOf(key.code);
        int now = key.isPress ? 1 : 0;
        if (key.code == code)
            now = value;
        else if (at >= 0 && (detector->keys[at].value == 1) == key.isPress)
            now = detector->keys[at].value;
        keys += {key.code, now};
    }
    detector->keys = keys;
    for (const LogDetector::Key &key : qAsConst(keys))
        detector->forgotten.remove(key.code);
    if (keys.size() == 1)
        return Kind::Single;
    const auto down = detector->codesDown().size();
    if (down == keys.size() && !wasChord)
        return Kind::ChordBegun;
    return down == 0 ? Kind::ChordEnded : Kind::ChordPart;
}

void LogKeys::take(const Said::ThirdKeyDropped &)
{
    const LogReads::Cause cause = m_reads->causeOf({}, KeyValue::Any);
    const LogDetectorPtr detector = m_detectors->forThirdKey(cause.origin, cause.read->identifier);
    QString reason = QStringLiteral("dropped, since two other keys are a pair");
    if (detector) {
        if (!cause.origin->descriptor())
            LogOrigin::join(cause.origin, detector->origin);
        const QVector<int> down = detector->codesDown();
        reason = down == detector->codes()
            ? QStringLiteral("dropped, since %1 are down since %2")
                  .arg(joinedKeys(down), timeText(detector->chordSince))
            : QStringLiteral("dropped, since %1 of the chord %2, begun at %3, is still down")
                  .arg(joinedKeys(down), joinedKeys(detector->codes()),
                       timeText(detector->chordSince));
    }
    tellDropped(cause, detector, reason);
}

void LogKeys::take(const Said::ReleaseDropped &)
{
    const LogReads::Cause cause = m_reads->causeOf({}, KeyValue::Release);
    QString reason = QStringLiteral("dropped: a release without a press");
    LogDetectorPtr detector;
    if (cause.record)
        detector = m_detectors->forRelease(cause.origin, cause.record->code);
    if (detector) {
        const int code = cause.record->code;
        if (!cause.origin->descriptor())
            LogOrigin::join(cause.origin, detector->origin);
        if (detector->forgotten.contains(code)) {
            reason =
                QStringLiteral("dropped: the handlers were selected at %1, which ended its press")
                    .arg(timeText(detector->forgotten.take(code)));
        } else if (detector->identifier != cause.read->identifier) {
            // The rest of a read goes to the handler that began it: a slot had selected another.
            reason = QStringLiteral("dropped: its press went to the handler of identifier '%1'")
                         .arg(detector->identifier);
        } else {
            reason =
                QStringLiteral("dropped: its press had been forgotten, by a selection that the "
                               "log does not show");
            // A detector of long presses hears of no release that is dropped.
            detector->leftTimed.insert(code);
            detector->keys.remove(detector->indexOf(code));
            m_outcomes->tellWaiting(m_time->now, detector, code, Outcome::Open,
                                    QStringLiteral("forgotten before its release at ")
                                        + timeText(m_time->now));
        }
    }
    tellDropped(cause, detector, reason);
}

void LogKeys::tellDropped(const LogReads::Cause &cause, const LogDetectorPtr &detector,
                          const QString &reason)
{
    if (!cause.record) {
        m_queue->add(m_time->now,
                     Remark{QStringLiteral("a key was ") + reason
                            + QStringLiteral("; which one is not in the log")});
        return;
    }
    if (cause.record->value != 0)
        m_outcomes->leaveWaiting(m_time->now, *cause.origin, cause.record->code);
    LogDetector of;
    of.origin = cause.origin;
    of.identifier = detector ? detector->identifier : cause.read->identifier;
    m_outcomes->step(m_time->now, Step::Dropped, of, {cause.record->code});
    m_queue->addOutcome(m_time->now, cause.record, outcomeOf(Outcome::Dropped, reason));
}

void LogKeys::take(const Said::KeyPassedOn &key)
{
    for (auto read = m_reads->rbegin(); read != m_reads->rend(); ++read) {
        if (!read->hand || !read->hand->expectsKey(key.code))
            continue;
        LogHand &hand = *read->hand;
        m_reads->closeAfter(&*read);
        ++hand.keyLines;
        // First the release of the first key, then both.
        hand.isPairPassedOn = hand.kind == Kind::ChordBegun && hand.keyLines > 1;
        // The pair counts as released then: a slot let its first key go meanwhile.
        if (hand.isPairPassedOn && key.value == 0)
            hand.isReleasedInBetween = true;
        hand.time = m_time->now;
        return;
    }
}

void LogKeys::forget()
{
    // A slot that selects is one of an event's.
    for (LogRead &read : *m_reads) {
        if (read.hand && !read.hand->isPair() && read.hand->events.isEmpty())
            m_outcomes->finishHand(&read);
    }
    QVector<LogDetectorPtr> detectors = m_detectors->all();
    std::stable_sort(detectors.begin(), detectors.end(), [](const auto &one, const auto &other) {
        return one->origin->text() < other->origin->text();
    });
    for (const LogDetectorPtr &detector : detectors) {
        // A handler that is selected no longer, and takes the rest of a read, keeps its keys.
        if (detector->keys.isEmpty() || detector->identifier != m_reads->identifier())
            continue;
        const QVector<int> codes = detector->codes();
        m_outcomes->step(m_time->now, Step::Forgotten, *detector, codes);
        for (const int code : codes) {
            detector->forgotten.insert(code, m_time->now);
            detector->leftTimed.insert(code);
            m_outcomes->tellWaiting(
                m_time->now, detector, code, Outcome::Open,
                QStringLiteral("nothing was published for it; forgotten when handlers were "
                               "selected, at ")
                    + timeText(m_time->now));
        }
        detector->keys.clear();
        detector->isChord = false;
        // A chord that was about to begin is lost.
        for (LogRead &read : *m_reads) {
            if (read.hand && read.hand->detector == detector && read.hand->keyLines == 1)
                m_outcomes->finishHand(&read);
        }
    }
}

} // namespace Vorn::Workbench
