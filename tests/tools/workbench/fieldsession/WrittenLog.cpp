#include "WrittenLog.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "LogLine.h"
#include "SessionFormat.h"
#include "SessionTime.h"

#include <QHash>

#include <linux/input.h>

using namespace Vorn;
using namespace Vorn::Workbench;

namespace {

QString shortName(const QString &device)
{
    return device.isEmpty() ? QStringLiteral("?") : device.section('/', -1);
}

QString keys(int type, const QVector<int> &codes)
{
    QStringList names;
    for (const int code : codes)
        names += eventCodeName(type, code);
    return names.isEmpty() ? QStringLiteral("?") : names.join('+');
}

struct InBrief
{
    QString operator()(const SessionStart &start) const
    {
        return QStringLiteral("start of %1").arg(start.source);
    }
    QString operator()(const Remark &remark) const { return "# " + remark.text; }
    QString operator()(const DeviceChange &change) const
    {
        return QStringLiteral("%1 %2 '%3' %4")
            .arg(change.added ? "+" : "-", shortName(change.device), change.name,
                 busName(change.bus));
    }
    QString operator()(const RecordRead &record) const
    {
        if (record.type == EV_SYN && record.code == SYN_REPORT)
            return {};
        return QStringLiteral("%1 %2 %3")
            .arg(shortName(record.device), eventCodeName(record.type, record.code))
            .arg(record.value);
    }
    QString operator()(const RecordOutcome &outcome) const
    {
        return QStringLiteral("%1 %2 %3 %4 [%5] %6")
            .arg(shortName(outcome.device), eventCodeName(outcome.type, outcome.code))
            .arg(outcome.value)
            .arg(outcomeName(outcome.what), outcome.events.join(", "), outcome.reason)
            .trimmed();
    }
    QString operator()(const DetectorStep &step) const
    {
        return QStringLiteral("%1 %2 %3 for '%4'%5")
            .arg(shortName(step.device), detectorStepName(step.what), keys(EV_KEY, step.keys),
                 step.identifier, step.mapped ? ", mapped" : "");
    }
    QString operator()(const EventPublished &event) const
    {
        return QStringLiteral("=> %1 %2 of %3 %4 %5")
            .arg(commandName(event.command), stateName(event.state), shortName(event.device),
                 busName(event.bus), keys(event.type, event.codes));
    }
    QString operator()(const IdentifierSelected &selected) const
    {
        return QStringLiteral("identifier '%1'").arg(selected.identifier);
    }
    template <typename Other>
    QString operator()(const Other &) const
    {
        return QStringLiteral("something else");
    }
};

} // namespace

WrittenLog &WrittenLog::add(const char *logger, const QString &message)
{
    LogLine line;
    line.number = ++m_number;
    m_time += m_pace;
    line.time = 1'767'348'000'000'000 + m_time;
    line.hasDate = true;
    line.logger = QString::fromLatin1(logger);
    line.message = message;
    line.process = m_process;
    m_sessions.add(line);
    return *this;
}

WrittenLog &WrittenLog::wait(int milliseconds)
{
    m_time += qint64{milliseconds} * 1000;
    return *this;
}

WrittenLog &WrittenLog::pace(int microseconds)
{
    m_pace = microseconds;
    return *this;
}

WrittenLog &WrittenLog::of(const char *process)
{
    m_process = QString::fromLatin1(process);
    return *this;
}

WrittenLog &WrittenLog::device(int number, const QString &name, bool hasSwitches)
{
    const QString path = QStringLiteral("/dev/input/event%1").arg(number);
    add(handlers, QStringLiteral(" ---> added '%1'").arg(path));
    add(listeners, QStringLiteral("Event device %1 ready").arg(path));
    add(listeners, QStringLiteral("bustype: 25"));
    add(listeners, QStringLiteral("name: ") + name);
    return add(listeners,
               QStringLiteral("Event device %1 %2")
                   .arg(path, hasSwitches ? "ready" : "does not support EV_SW"));
}

WrittenLog &WrittenLog::read(int descriptor)
{
    return add(listeners, QStringLiteral("Enter LinuxInputListener::readData: %1").arg(descriptor));
}

WrittenLog &WrittenLog::record(int code, int value)
{
    add(listeners, QStringLiteral(" type: 1 code:%1 value:%2").arg(code).arg(value));
    return add(listeners, QStringLiteral(" type: 0 code:0 value:0"));
}

WrittenLog &WrittenLog::stored(const QStringList &keys)
{
    QStringList list;
    for (const QString &key : keys)
        list += QStringLiteral("input_event: code:%1 value:%2 time:10:00:00,000")
                    .arg(key.section(' ', 0, 0), key.section(' ', 1, 1));
    return add(detectors, QStringLiteral("Stored:(%1)").arg(list.join(", ")));
}

WrittenLog &WrittenLog::storedAgain(int code, const QStringList &keys)
{
    add(detectors, QStringLiteral("Found already event for code:%1").arg(code));
    return stored(keys);
}

WrittenLog &WrittenLog::passedOn(int code, int value)
{
    return add(handlers, QStringLiteral("key:%1 value %2").arg(code).arg(value));
}

WrittenLog &WrittenLog::press(int descriptor, int code)
{
    read(descriptor).record(code, 1);
    return stored({QStringLiteral("%1 press").arg(code)}).passedOn(code, 1);
}

WrittenLog &WrittenLog::release(int descriptor, int code)
{
    read(descriptor).record(code, 0);
    return storedAgain(code, {QStringLiteral("%1 release").arg(code)}).passedOn(code, 0);
}

WrittenLog &WrittenLog::report(const QString &device, const QString &command, const QString &state,
                               const QString &identifier)
{
    return add(handlers,
               QStringLiteral("Device: %1; id: %2; command [cmd=%3, state=%4]")
                   .arg(device, identifier, command, state));
}

WrittenLog &WrittenLog::bus(const QString &command, const QString &state)
{
    static const QHash<QString, QString> words = {{"KeyPressed", "press"},
                                                  {"KeyReleased", "release"},
                                                  {"KeyLongPress", "long press"},
                                                  {"SwitchEnabled", "switch enable"},
                                                  {"SwitchDisabled", "switch disable"}};
    return add("Input",
               QStringLiteral("Vorn::InputEvent(%1) %2")
                   .arg(Vorn::command(command).value())
                   .arg(words.value(state)));
}

WrittenLog &WrittenLog::event(const QString &identifier, const QString &command,
                              const QString &state)
{
    report(command == "Number1" ? "remote" : "panel", command, state, identifier);
    return bus(command, state);
}

WrittenLog &WrittenLog::select(const QString &identifier)
{
    add(handlers, "Enter BasicInputHandler::selectHandler: " + identifier);
    return add(handlers, "Enter BasicInputHandler::selectKeyHandler: " + identifier);
}

std::vector<SessionEntry> WrittenLog::session()
{
    m_sessions.finish();
    return m_entries;
}

std::string WrittenLog::transcript()
{
    std::string text;
    for (const SessionEntry &entry : session()) {
        const QString line = std::visit(InBrief(), entry.what);
        if (!line.isEmpty())
            text += sessionSeconds(entry.time).toStdString() + " " + line.toStdString() + "\n";
    }
    return text;
}
