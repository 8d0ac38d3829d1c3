#include "SessionLikeness.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "SessionFormat.h"

#include <QSet>

#include <linux/input.h>

#include <algorithm>
#include <map>
#include <sstream>

namespace Vorn::Workbench {

namespace {

std::string codes(int type, const QVector<int> &list)
{
    QStringList names;
    for (const int code : list)
        names += eventCodeName(type, code);
    return names.join('+').toStdString();
}

/// Milliseconds: layouts have no more.
std::string at(const SessionEntry &entry, Times times, const std::string &text)
{
    return text.empty() || times == Times::Ignored ? text
                                                   : std::to_string(entry.time / 1000) + " " + text;
}

/// A pair's event by its second key, and none for a switch.
QVector<int> loggedCodes(const EventPublished &event)
{
    const bool isKnown = event.type == EV_KEY && !event.codes.isEmpty();
    return isKnown ? QVector<int>{event.codes.last()} : QVector<int>();
}

bool isOpen(const QString &device)
{
    return device.startsWith("descriptor ");
}

/// The keys of devices that a log leaves open: nothing of theirs was published before they went.
QSet<int> openKeys(const std::vector<SessionEntry> &read)
{
    QSet<int> keys;
    for (const SessionEntry &entry : read) {
        const auto *record = std::get_if<RecordRead>(&entry.what);
        if (record && isOpen(record->device) && record->type == EV_KEY)
            keys += record->code;
    }
    return keys;
}

/// A session without the devices of these keys.
std::vector<SessionEntry> withoutDevicesOf(const QSet<int> &keys, std::vector<SessionEntry> entries)
{
    std::vector<SessionEntry> kept;
    for (SessionEntry &entry : entries) {
        bool isLeft = false;
        if (auto *record = std::get_if<RecordRead>(&entry.what)) {
            isLeft = record->type == EV_SYN && !keys.isEmpty();
            if (keys.contains(record->code))
                record->device.clear();
        } else if (auto *outcome = std::get_if<RecordOutcome>(&entry.what)) {
            if (keys.contains(outcome->code))
                outcome->device.clear();
        } else if (auto *step = std::get_if<DetectorStep>(&entry.what)) {
            const bool isOpenKey = keys.contains(step->keys.first());
            isLeft = isOpenKey && step->what == DetectorStep::What::Forgotten;
            if (isOpenKey)
                step->device.clear();
        } else if (auto *event = std::get_if<EventPublished>(&entry.what)) {
            if (!event->codes.isEmpty() && keys.contains(event->codes.last())) {
                event->device.clear();
                event->bus = InputEvent::Bus::NoBus;
            }
        }
        if (!isLeft)
            kept.push_back(entry);
    }
    return kept;
}

/// Whether a record was left open because an event may be its or that of a record around it.
bool mayHaveAnotherEvent(const QString &reason)
{
    return reason.startsWith("the log does not say whether ")
        && reason.contains(" is of this record or of another one: ");
}

bool isLeftOpen(const EventPublished &event, const std::vector<SessionEntry> &read)
{
    const QString text = commandName(event.command) + ' ' + stateName(event.state);
    return std::any_of(read.begin(), read.end(), [&](const SessionEntry &entry) {
        const auto *outcome = std::get_if<RecordOutcome>(&entry.what);
        return outcome && mayHaveAnotherEvent(outcome->reason) && outcome->reason.contains(text);
    });
}

/// A log does not always tell which key a long press is of, or a release after a slot that ran an
/// event loop, but must not tell a wrong one.
void leaveKeysOpen(std::vector<SessionEntry> *stated, const std::vector<SessionEntry> &read)
{
    std::vector<EventPublished *> events;
    for (SessionEntry &entry : *stated) {
        if (auto *event = std::get_if<EventPublished>(&entry.what))
            events.push_back(event);
    }
    std::size_t count = 0;
    for (const SessionEntry &entry : read) {
        const auto *event = std::get_if<EventPublished>(&entry.what);
        if (!event || count == events.size())
            continue;
        EventPublished *other = events[count++];
        if (!event->codes.isEmpty()
            || (event->state != InputEvent::KeyLongPress && !isLeftOpen(*event, read)))
            continue;
        other->codes.clear();
        if (other->device.isEmpty()) {
            other->device = event->device;
            other->bus = event->bus;
        }
    }
}

/// Nothing for what the library does not log: when a long press is due, expectations, remarks.
struct InBrief
{
    std::string operator()(const DeviceChange &change) const
    {
        return QStringLiteral("%1 %2 %3 %4")
            .arg(change.added ? "+" : "-", change.device, change.name, busName(change.bus))
            .toStdString();
    }
    std::string operator()(const DetectorStep &step) const
    {
        if (step.what == DetectorStep::What::LongPressDue
            || step.what == DetectorStep::What::LongPressEnded)
            return {};
        return QStringLiteral("%1 of %2: ")
                   .arg(detectorStepName(step.what), step.device)
                   .toStdString()
            + codes(EV_KEY, step.keys);
    }
    std::string operator()(const EventPublished &event) const
    {
        return QStringLiteral("%1 %2 %3 of %4: ")
                   .arg(commandName(event.command), stateName(event.state), busName(event.bus),
                        event.device)
                   .toStdString()
            + codes(event.type, loggedCodes(event));
    }
    std::string operator()(const IdentifierSelected &selected) const
    {
        return "identifier " + selected.identifier.toStdString();
    }
    template <typename Other>
    std::string operator()(const Other &) const
    {
        return {};
    }
};

std::map<std::string, std::vector<std::string>> records(const std::vector<SessionEntry> &entries,
                                                        Times times)
{
    std::map<std::string, std::vector<std::string>> lists;
    for (const SessionEntry &entry : entries) {
        const auto *record = std::get_if<RecordRead>(&entry.what);
        if (!record)
            continue;
        std::ostringstream text;
        text << record->type << " " << record->code << " " << record->value;
        lists[record->device.toStdString()].push_back(at(entry, times, text.str()));
    }
    return lists;
}

struct Told
{
    RecordOutcome::What what;
    QStringList events;
    QString reason;
};

/// Which of the records that have no outcome yet the next one is of.
enum class Order {
    LastFirst, ///< what happens in a slot is over before what the slot is called for
    FirstFirst, ///< as whoever reads a session takes it
};

template <typename What>
std::string recordName(const What &what)
{
    std::ostringstream text;
    text << what.device.toStdString() << " " << eventCodeName(what.type, what.code).toStdString()
         << " " << what.value;
    return text.str();
}

/// What became of each record, in the order of the records.
std::map<std::string, std::vector<Told>> outcomes(const std::vector<SessionEntry> &entries,
                                                  Order order)
{
    std::map<std::string, std::vector<Told>> lists;
    std::map<std::string, std::vector<std::size_t>> open;
    for (const SessionEntry &entry : entries) {
        if (const auto *record = std::get_if<RecordRead>(&entry.what)) {
            std::vector<Told> &list = lists[recordName(*record)];
            if (record->type != EV_SYN) {
                open[recordName(*record)].push_back(list.size());
                list.push_back({RecordOutcome::What::NotTaken, {"none"}, {}});
            }
        }
        const auto *outcome = std::get_if<RecordOutcome>(&entry.what);
        if (!outcome)
            continue;
        const Told told{outcome->what, outcome->events, outcome->reason};
        std::vector<std::size_t> &indices = open[recordName(*outcome)];
        if (indices.empty()) {
            lists[recordName(*outcome)].push_back(told);
            continue;
        }
        const auto index = order == Order::LastFirst ? indices.end() - 1 : indices.begin();
        lists[recordName(*outcome)][*index] = told;
        indices.erase(index);
    }
    return lists;
}

/// The rest of a click, which is in doubt.
bool agreesWithoutRelease(const Told &stated, const Told &read)
{
    return mayHaveAnotherEvent(read.reason)
        && stated.events.mid(0, read.events.size()) == read.events
        && stated.events.size() - read.events.size() <= 1
        && (stated.events.size() == read.events.size()
            || read.reason.contains(stated.events.last()));
}

/// A log does not tell a key that is held back from one without a command, nor a switch without a
/// handler from one without a command.
bool agree(const Told &stated, const Told &read)
{
    using What = RecordOutcome::What;
    if (agreesWithoutRelease(stated, read))
        return true;
    if (stated.events != read.events)
        return false;
    const bool isSilent =
        stated.what == What::Held || stated.what == What::Unmapped || stated.what == What::Unread;
    return stated.what == read.what || (isSilent && read.what == What::Open)
        || (stated.what == What::Held && read.what == What::Unmapped);
}

void compare(const std::string &what, const std::vector<std::string> &stated,
             const std::vector<std::string> &read, std::vector<std::string> *differences)
{
    for (std::size_t i = 0; i < std::max(stated.size(), read.size()); ++i) {
        const std::string one = i < stated.size() ? stated[i] : "nothing";
        const std::string other = i < read.size() ? read[i] : "nothing";
        if (one == other)
            continue;
        std::ostringstream text;
        text << what << " " << i << ": stated '" << one << "', read '" << other << "'";
        differences->push_back(text.str());
        return;
    }
}

std::vector<std::string> inBrief(const std::vector<SessionEntry> &entries, Times times)
{
    std::vector<std::string> texts;
    for (const SessionEntry &entry : entries) {
        const std::string text = at(entry, times, std::visit(InBrief(), entry.what));
        if (!text.empty())
            texts.push_back(text);
    }
    return texts;
}

/// Events of both keys of a pair that are of its second key: the outcome has to leave it open.
void checkPairs(const std::vector<SessionEntry> &stated, const std::vector<SessionEntry> &read,
                std::vector<std::string> *differences)
{
    std::vector<const EventPublished *> events;
    for (const SessionEntry &entry : stated) {
        if (const auto *event = std::get_if<EventPublished>(&entry.what))
            events.push_back(event);
    }
    std::size_t count = 0;
    int wrong = 0;
    for (const SessionEntry &entry : read) {
        const auto *event = std::get_if<EventPublished>(&entry.what);
        if (event && count < events.size()) {
            const EventPublished &other = *events[count++];
            wrong += event->type == EV_KEY && event->codes != other.codes ? 1 : 0;
        }
        const auto *outcome = std::get_if<RecordOutcome>(&entry.what);
        if (outcome && outcome->reason.startsWith("the log does not say whether for "))
            wrong = 0;
    }
    if (wrong > 0)
        differences->emplace_back("an event has other keys, and no outcome leaves it open");
}

std::vector<std::string> outcomeDifferences(const std::map<std::string, std::vector<Told>> &stated,
                                            const std::vector<SessionEntry> &read)
{
    std::vector<std::string> found;
    auto readOutcomes = outcomes(read, Order::FirstFirst);
    for (const auto &[record, list] : stated) {
        const std::vector<Told> &other = readOutcomes[record];
        if (list.size() != other.size())
            found.push_back(std::to_string(list.size()) + " outcomes of " + record + ", read "
                            + std::to_string(other.size()));
        for (std::size_t i = 0; i < std::min(list.size(), other.size()); ++i) {
            if (!agree(list[i], other[i]))
                found.push_back("outcome " + std::to_string(i) + " of " + record + ": stated "
                                + outcomeName(list[i].what).toStdString() + ", read "
                                + outcomeName(other[i].what).toStdString());
        }
    }
    return found;
}

} // namespace

std::vector<std::string> differences(const std::vector<SessionEntry> &statedSession,
                                     const std::vector<SessionEntry> &readSession, Times times)
{
    std::vector<std::string> found;
    const QSet<int> open = openKeys(readSession);
    std::vector<SessionEntry> stated = withoutDevicesOf(open, statedSession);
    const std::vector<SessionEntry> read = withoutDevicesOf(open, readSession);
    leaveKeysOpen(&stated, read);
    compare("entry", inBrief(stated, times), inBrief(read, times), &found);
    checkPairs(stated, read, &found);
    const bool areRecordsLate = times == Times::OfOthersThanRecords;
    if (areRecordsLate)
        times = Times::Ignored;
    auto statedRecords = records(stated, times);
    auto readRecords = records(read, times);
    for (auto *lists : {&statedRecords, &readRecords}) {
        for (auto &[device, list] : *lists) {
            if (areRecordsLate)
                std::sort(list.begin(), list.end());
        }
    }
    for (const auto &[device, list] : statedRecords)
        compare("record of " + device, list, readRecords[device], &found);
    if (readRecords.size() != statedRecords.size())
        found.emplace_back("records of other devices were read");
    // One press in a slot of another of the same key: a log may tell of the outer one first.
    const std::vector<std::string> byRecord =
        outcomeDifferences(outcomes(stated, Order::LastFirst), read);
    const std::vector<std::string> asTold =
        outcomeDifferences(outcomes(stated, Order::FirstFirst), read);
    if (!byRecord.empty() && !asTold.empty())
        found.insert(found.end(), asTold.begin(), asTold.end());
    return found;
}

} // namespace Vorn::Workbench
