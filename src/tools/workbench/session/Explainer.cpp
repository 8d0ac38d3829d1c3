#include "Explainer.h"

#include "CommandNames.h"
#include "EventNames.h"
#include "JsonLine.h"
#include "SessionFormat.h"
#include "SessionTime.h"

#include <QJsonArray>
#include <QJsonObject>

#include <linux/input.h>

#include <algorithm>
#include <utility>

namespace Vorn::Workbench {

namespace {

/// A key that is held for hours must not keep everything after it.
constexpr std::size_t maxPending = 1000;

bool isHeld(const Explanation &explanation)
{
    return explanation.outcome == RecordOutcome::What::Held;
}

} // namespace

QByteArray toJsonLine(const Explanation &explanation)
{
    QJsonObject object{{"time", static_cast<double>(explanation.time) / 1000},
                       {"device", explanation.device},
                       {"name", explanation.deviceName},
                       {"events", QJsonArray::fromStringList(explanation.events)},
                       {"answered", explanation.isAnswered},
                       {"reason", explanation.reason}};
    if (explanation.hasKey) {
        object.insert("type", eventTypeName(explanation.type));
        object.insert("code", eventCodeName(explanation.type, explanation.code));
        object.insert("codeNumber", explanation.code);
        object.insert("value", explanation.value);
    }
    if (explanation.outcome)
        object.insert("outcome", outcomeName(*explanation.outcome));
    return jsonLine(object);
}

Explainer::Explainer(Sink sink, LooseEvents looseEvents)
    : m_sink(std::move(sink))
    , m_looseEvents(looseEvents)
{ }

void Explainer::add(const SessionEntry &entry)
{
    m_time = entry.time;
    std::visit([this](const auto &what) { take(what); }, entry.what);
    passOn();
}

void Explainer::finish()
{
    for (Pending &pending : m_pending) {
        if (!pending.isComplete && isHeld(pending.explanation))
            pending.explanation.reason += QStringLiteral("; still down at the end");
        pending.isComplete = true;
    }
    passOn();
}

void Explainer::take(const DeviceChange &change)
{
    m_names.insert(change.device, change.name);
    if (change.added)
        return;
    for (Pending &pending : m_pending) {
        if (pending.explanation.device == change.device && !pending.isComplete)
            complete(&pending, QStringLiteral("the device went at "), false);
    }
}

void Explainer::take(const RecordRead &record)
{
    if (record.type == EV_SYN)
        return;
    ++m_records;
    Pending pending;
    pending.explanation.time = m_time;
    pending.explanation.device = record.device;
    pending.explanation.deviceName = m_names.value(record.device);
    pending.explanation.type = record.type;
    pending.explanation.code = record.code;
    pending.explanation.value = record.value;
    m_pending.push_back(pending);
}

void Explainer::take(const RecordOutcome &outcome)
{
    ++m_outcomes;
    const auto isOf = [&outcome](const Pending &pending) {
        const Explanation &record = pending.explanation;
        return !record.outcome && !pending.isComplete && record.device == outcome.device
            && record.type == outcome.type && record.code == outcome.code
            && record.value == outcome.value;
    };
    const auto found = std::find_if(m_pending.begin(), m_pending.end(), isOf);
    if (found == m_pending.end())
        return;
    found->explanation.outcome = outcome.what;
    found->explanation.events = outcome.events;
    found->explanation.reason = outcome.reason;
    found->explanation.isAnswered = !outcome.events.isEmpty();
    found->isComplete = outcome.what != RecordOutcome::What::Held;
    // A release answers the press that was held back for it.
    if (outcome.type != EV_KEY || outcome.value != 0)
        return;
    if (Pending *press = heldPress(outcome.device, outcome.code))
        complete(press,
                 outcome.events.isEmpty() ? QStringLiteral("released at ")
                                          : QStringLiteral("published at the release, at "),
                 !outcome.events.isEmpty());
}

void Explainer::take(const DetectorStep &step)
{
    for (const int code : step.keys) {
        Pending *press = heldPress(step.device, code);
        if (!press)
            continue;
        if (step.what == DetectorStep::What::FirstKeyWithdrawn)
            complete(press, QStringLiteral("first key of a chord, withdrawn at "), false);
        else if (step.what == DetectorStep::What::Forgotten)
            complete(press, QStringLiteral("forgotten when handlers were selected, at "), false);
    }
}

// A long press has no record of its own.
void Explainer::take(const EventPublished &event)
{
    if (event.codes.isEmpty() && m_looseEvents == LooseEvents::Explained)
        addLoose(event);
    if (event.state != InputEvent::KeyLongPress || event.codes.isEmpty())
        return;
    if (Pending *press = heldPress(event.device, event.codes.first()))
        complete(press, QStringLiteral("its long press was published at "), true);
    Pending pending;
    pending.explanation.time = m_time;
    pending.explanation.device = event.device;
    pending.explanation.deviceName = m_names.value(event.device);
    pending.explanation.type = event.type;
    pending.explanation.code = event.codes.first();
    pending.explanation.value = 1;
    pending.explanation.events =
        QStringList{commandName(event.command) + QLatin1Char(' ') + stateName(event.state)};
    pending.explanation.isAnswered = true;
    pending.isComplete = true;
    m_pending.push_back(pending);
}

void Explainer::addLoose(const EventPublished &event)
{
    Pending pending;
    pending.explanation.time = m_time;
    pending.explanation.device = event.device;
    pending.explanation.deviceName = m_names.value(event.device);
    pending.explanation.events =
        QStringList{commandName(event.command) + QLatin1Char(' ') + stateName(event.state)};
    pending.explanation.reason = QStringLiteral("the log does not say what caused it");
    pending.explanation.isAnswered = true;
    pending.explanation.hasKey = false;
    pending.isComplete = true;
    m_pending.push_back(pending);
}

Explainer::Pending *Explainer::heldPress(const QString &device, int code)
{
    const auto isOf = [&](const Pending &pending) {
        return !pending.isComplete && isHeld(pending.explanation)
            && pending.explanation.device == device && pending.explanation.code == code;
    };
    const auto found = std::find_if(m_pending.begin(), m_pending.end(), isOf);
    return found == m_pending.end() ? nullptr : &*found;
}

/// @param reason the time follows it
void Explainer::complete(Pending *pending, const QString &reason, bool isAnswered) const
{
    QString &text = pending->explanation.reason;
    if (!text.isEmpty())
        text += QStringLiteral("; ");
    text += reason + sessionSeconds(m_time) + QStringLiteral(" s");
    pending->explanation.isAnswered = isAnswered;
    pending->isComplete = true;
}

void Explainer::passOn()
{
    while (!m_pending.empty() && (m_pending.front().isComplete || m_pending.size() > maxPending)) {
        m_sink(m_pending.front().explanation);
        m_pending.pop_front();
    }
}

} // namespace Vorn::Workbench
