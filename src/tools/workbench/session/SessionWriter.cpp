#include "SessionWriter.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "JsonLine.h"
#include "Session.h"
#include "SessionFormat.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>

#include <linux/input.h>

namespace Vorn::Workbench {

namespace {

// A double in ms holds every µs that a reader accepts.
double milliseconds(qint64 microseconds)
{
    return static_cast<double>(microseconds) / 1000;
}

// A value without a name is written as its number, so that a reader gets the same value back.
QString commandText(InputEvent::Command value)
{
    const QString name = commandName(value);
    return command(name) == value ? name : QString::number(value);
}

QString stateText(InputEvent::State value)
{
    const QString name = stateName(value);
    return state(name) == value ? name : QString::number(value);
}

QString busText(InputEvent::Bus value)
{
    const QString name = busName(value);
    return bus(name) == value ? name : QString::number(static_cast<int>(value));
}

QJsonArray codeNames(int type, const QVector<int> &codes)
{
    QJsonArray names;
    for (const int code : codes)
        names.append(eventCodeName(type, code));
    return names;
}

// QDateTime stops at milliseconds.
QString wallClockText(qint64 time)
{
    const qint64 fraction = (time % 1'000'000 + 1'000'000) % 1'000'000;
    const qint64 seconds = (time - fraction) / 1'000'000;
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC)
               .toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss"))
        + QStringLiteral(".%1Z").arg(fraction, 6, 10, QLatin1Char('0'));
}

QJsonObject members(const SessionStart &start)
{
    return {{"kind", "start"},
            {"source", start.source},
            {"profile", start.profile},
            {"wallClock", wallClockText(start.wallClock)},
            {"version", sessionVersion}};
}

QJsonObject members(const DeviceChange &change)
{
    return {{"kind", "device"},
            {"change", change.added ? "added" : "removed"},
            {"device", change.device},
            {"name", change.name},
            {"bus", busText(change.bus)}};
}

QJsonObject members(const RecordRead &record)
{
    return {{"kind", "record"},
            {"device", record.device},
            {"type", eventTypeName(record.type)},
            {"typeNumber", record.type},
            {"code", eventCodeName(record.type, record.code)},
            {"codeNumber", record.code},
            {"value", record.value},
            {"stamp", milliseconds(record.stamp)}};
}

QJsonObject members(const RecordOutcome &outcome)
{
    QJsonObject object{
        {"kind", "outcome"},          {"outcome", outcomeName(outcome.what)},
        {"device", outcome.device},   {"type", eventTypeName(outcome.type)},
        {"typeNumber", outcome.type}, {"code", eventCodeName(outcome.type, outcome.code)},
        {"codeNumber", outcome.code}, {"value", outcome.value}};
    if (!outcome.events.isEmpty())
        object.insert("events", QJsonArray::fromStringList(outcome.events));
    if (!outcome.reason.isEmpty())
        object.insert("reason", outcome.reason);
    return object;
}

QJsonObject members(const KeyStates &states)
{
    QJsonArray keys;
    for (const KeyState &state : states.keys) {
        QJsonObject key{{"key", eventCodeName(EV_KEY, state.code)},
                        {"down", state.isDown},
                        {"withdrawn", state.isWithdrawn},
                        {"held", state.isHeld}};
        if (state.isCounting)
            key.insert("count", state.count);
        if (state.due)
            key.insert("due", milliseconds(*state.due));
        keys.append(key);
    }
    return {{"kind", "state"},
            {"device", states.device},
            {"handler", states.hasHandler},
            {"chord", states.isChord},
            {"keys", keys}};
}

QJsonObject members(const DetectorStep &step)
{
    QJsonObject object{{"kind", "detector"},
                       {"what", detectorStepName(step.what)},
                       {"device", step.device},
                       {"identifier", step.identifier},
                       {"keys", codeNames(EV_KEY, step.keys)}};
    if (step.what == DetectorStep::What::LongPressDue)
        object.insert("due", milliseconds(step.due));
    if (step.what == DetectorStep::What::ChordFound)
        object.insert("mapped", step.mapped);
    return object;
}

QJsonObject members(const EventPublished &event)
{
    QJsonObject object{{"kind", "event"},
                       {"command", commandText(event.command)},
                       {"state", stateText(event.state)},
                       {"bus", busText(event.bus)}};
    if (!event.device.isEmpty())
        object.insert("device", event.device);
    // Without a type the codes have no names, and a reader could not look them up.
    if (event.type != 0) {
        object.insert("codeType", eventTypeName(event.type));
        object.insert("codes", codeNames(event.type, event.codes));
    }
    if (event.latency)
        object.insert("latency", milliseconds(*event.latency));
    return object;
}

QJsonObject members(const IdentifierSelected &selected)
{
    return {{"kind", "identifier"}, {"identifier", selected.identifier}};
}

QJsonObject members(const ExpectationChecked &expectation)
{
    QJsonObject object{{"kind", "expectation"},
                       {"file", expectation.file},
                       {"line", expectation.line},
                       {"text", expectation.text},
                       {"met", expectation.met}};
    if (!expectation.found.isEmpty())
        object.insert("found", expectation.found);
    return object;
}

QJsonObject members(const Remark &remark)
{
    return {{"kind", "remark"}, {"text", remark.text}};
}

} // namespace

QByteArray toJsonLine(const SessionEntry &entry)
{
    QJsonObject object = std::visit([](const auto &what) { return members(what); }, entry.what);
    object.insert("time", milliseconds(entry.time));
    return jsonLine(object);
}

} // namespace Vorn::Workbench
