#include "LogQueue.h"

#include <linux/input.h>

#include <algorithm>
#include <utility>

namespace Vorn::Workbench {

namespace {

/// Entries to begin with, and to wait for a device with: a few MB.
constexpr std::size_t firstEntries = 2'000;
constexpr std::size_t maxWaiting = 20'000;
constexpr std::size_t maxAhead = 1'000;
/// µs. Both readers of a node read in one turn of the event loop, which slots may hold up.
constexpr qint64 maxLag = 1'000'000;

using Outcome = RecordOutcome::What;

void setDevice(SessionEntry *entry, const LogOrigin &origin)
{
    const QString device = origin.text();
    if (auto *record = std::get_if<RecordRead>(&entry->what)) {
        record->device = device;
    } else if (auto *outcome = std::get_if<RecordOutcome>(&entry->what)) {
        outcome->device = device;
    } else if (auto *step = std::get_if<DetectorStep>(&entry->what)) {
        step->device = device;
    } else if (auto *event = std::get_if<EventPublished>(&entry->what)) {
        const LogDevicePtr known = origin.device();
        event->device = origin.isKnown() || origin.descriptor() ? device : QString();
        event->bus = known ? known->bus : InputEvent::Bus::NoBus;
    }
}

} // namespace

LogQueue::LogQueue(const LogCoverage *coverage, Sink sink)
    : m_coverage(coverage)
    , m_sink(std::move(sink))
{ }

void LogQueue::add(qint64 time, const decltype(SessionEntry::what) &what,
                   const LogOriginPtr &origin)
{
    m_time = std::max(m_time, time);
    m_items.push_back({SessionEntry{m_time, what}, origin, nullptr, Doubt::None});
}

void LogQueue::addRecord(const LogRecordPtr &record, qint64 stamp)
{
    add(record->time, RecordRead{{}, record->type, record->code, record->value, stamp},
        record->origin);
    m_items.back().record = record;
}

void LogQueue::addOutcome(qint64 time, const LogRecordPtr &record, const RecordOutcome &outcome,
                          Doubt doubt)
{
    RecordOutcome told = outcome;
    told.type = record->type;
    told.code = record->code;
    told.value = record->value;
    add(time, told, record->origin);
    m_items.back().record = record;
    m_items.back().doubt = doubt;
}

bool LogQueue::mayBegin() const
{
    return m_coverage->isComplete() || m_items.size() >= firstEntries;
}

void LogQueue::passOn()
{
    while (!m_items.empty()) {
        const LogOriginPtr &origin = m_items.front().origin;
        if (origin && !origin->isKnown() && m_items.size() < maxWaiting)
            return;
        passOn(&m_items.front());
        m_items.pop_front();
    }
}

void LogQueue::finish()
{
    for (; !m_items.empty(); m_items.pop_front())
        passOn(&m_items.front());
}

void LogQueue::passOn(Item *item)
{
    if (const auto *change = std::get_if<DeviceChange>(&item->entry.what))
        m_ahead.remove(change->device);
    const bool isRecord = std::holds_alternative<RecordRead>(item->entry.what);
    if (isRecord && isTwin(item->record))
        return;
    if (!isRecord && item->record && !mayTell(*item))
        return;
    resolve(item);
    if (item->origin)
        setDevice(&item->entry, *item->origin);
    m_sink(item->entry);
}

/// Whether the other reader of the device has logged the record before.
bool LogQueue::isTwin(const LogRecordPtr &record)
{
    if (record->twin)
        return true;
    const LogDevicePtr device = record->origin->device();
    if (!device || device->readers() < 2 || !record->origin->descriptor())
        return false;
    Ahead &ahead = m_ahead[device->path];
    const std::optional<int> reader = record->origin->descriptor();
    while (
        !ahead.records.empty()
        && (record->time - ahead.records.front()->time > maxLag || ahead.records.size() > maxAhead))
        ahead.records.pop_front();
    const bool isOther = !reader || reader != ahead.reader;
    if (isOther && !ahead.records.empty()) {
        const LogRecordPtr first = ahead.records.front();
        if (first->isSameAs(*record)) {
            ahead.records.pop_front();
            record->twin = first;
            return true;
        }
        // Lines of one of them are missing.
        if (reader)
            ahead.records.clear();
    }
    ahead.records.push_back(record);
    ahead.reader = reader;
    return false;
}

/// Whether an outcome is the first of its record, and not of a reader that left it to the other.
bool LogQueue::mayTell(const Item &item)
{
    const LogRecordPtr record = item.record->twin ? item.record->twin : item.record;
    if (record->hasOutcome)
        return false;
    const LogDevicePtr device = record->origin->device();
    const bool isByDescriptor = record->origin->descriptor().has_value();
    if (item.doubt == Doubt::Unread && device && isByDescriptor
        && ++record->timesLeft < device->readers())
        return false;
    record->hasOutcome = true;
    return true;
}

void LogQueue::resolve(Item *item) const
{
    auto *outcome = std::get_if<RecordOutcome>(&item->entry.what);
    if (!outcome || item->doubt == Doubt::None)
        return;
    const bool isKey = outcome->type == EV_KEY;
    outcome->what = Outcome::Open;
    if (!m_coverage->hasEvents()) {
        outcome->reason = QStringLiteral("the log does not say: it has no events");
    } else if (item->doubt == Doubt::Unmapped) {
        outcome->what = Outcome::Unmapped;
    } else if (!isKey) {
        outcome->reason = QStringLiteral("nothing was published: it has no handler, or the handler "
                                         "has no command for it");
    } else if (m_coverage->hasDetectors() && item->record && !item->record->origin->isKnown()) {
        outcome->reason = QStringLiteral("no key handler took it: the listener had no receiver, or "
                                         "it is that of the switches of a device");
    } else if (m_coverage->hasDetectors()) {
        outcome->what = Outcome::Unread;
        outcome->reason = QStringLiteral("no key handler took it: the listener had no receiver");
    } else {
        outcome->reason = QStringLiteral("the log has no event that follows from it, and no steps "
                                         "of the detectors");
    }
}

} // namespace Vorn::Workbench
