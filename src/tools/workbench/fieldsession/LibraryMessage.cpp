#include "LibraryMessage.h"

#include "CommandNames.h"

#include <linux/input.h>

#include <algorithm>
#include <limits>

namespace Vorn::Workbench {

namespace {

using namespace Said;

using Function = Entered::Function;
using Result = ListenerOpened::Result;

constexpr int maxCode = 0xffff;
constexpr int maxInt = std::numeric_limits<int>::max();
constexpr int minInt = std::numeric_limits<int>::min();

/// A text that is read from its beginning. What does not fit makes it fail, once and for all.
class Words
{
public:
    explicit Words(const QString &text)
        : m_rest(text)
    { }

    Words &skip(QLatin1String literal)
    {
        if (m_rest.startsWith(literal))
            m_rest = m_rest.mid(literal.size());
        else
            m_fits = false;
        return *this;
    }

    int number(int min = 0, int max = maxInt)
    {
        int length = m_rest.startsWith(QLatin1Char('-')) ? 1 : 0;
        while (length < m_rest.size() && m_rest.at(length) >= QLatin1Char('0')
               && m_rest.at(length) <= QLatin1Char('9'))
            ++length;
        bool isNumber = false;
        const qlonglong value = m_rest.left(length).toLongLong(&isNumber);
        m_rest = m_rest.mid(length);
        if (!isNumber || value < min || value > max) {
            m_fits = false;
            return min;
        }
        return static_cast<int>(value);
    }

    /// What is before a literal at the end.
    QString upToLast(QLatin1String end)
    {
        if (!m_rest.endsWith(end)) {
            m_fits = false;
            return {};
        }
        return std::exchange(m_rest, {}).chopped(end.size()).toString();
    }

    /// What is before the first occurrence of a literal, which is skipped.
    QString upTo(QLatin1String literal)
    {
        const auto at = m_rest.indexOf(literal);
        if (at < 0) {
            m_fits = false;
            return {};
        }
        QString before = m_rest.left(at).toString();
        m_rest = m_rest.mid(at + literal.size());
        return before;
    }

    QString rest() { return std::exchange(m_rest, {}).toString(); }

    bool startsWith(QLatin1String literal) const { return m_rest.startsWith(literal); }
    bool fits() const { return m_fits; }
    bool isDone() const { return m_fits && m_rest.isEmpty(); }

private:
    QStringView m_rest;
    bool m_fits = true;
};

QLatin1String literal(const char *text)
{
    return QLatin1String(text);
}

std::optional<LibraryLine> line(LibraryLogger logger, LogLevel level, const LibraryMessage &what)
{
    return LibraryLine{logger, level, what};
}

std::optional<InputEvent::State> stateOfWord(const QString &word)
{
    constexpr std::pair<const char *, InputEvent::State> words[] = {
        {"press", InputEvent::KeyPressed},
        {"release", InputEvent::KeyReleased},
        {"long press", InputEvent::KeyLongPress},
        {"switch enable", InputEvent::SwitchEnabled},
        {"switch disable", InputEvent::SwitchDisabled},
        {"Unknown", InputEvent::NoState},
    };
    for (const auto &[text, state] : words) {
        if (word == QLatin1String(text))
            return state;
    }
    return std::nullopt;
}

std::optional<LibraryLine> inputLine(const QString &message)
{
    Words words(message);
    words.skip(literal("Vorn::InputEvent("));
    const int command = words.number(minInt);
    words.skip(literal(") "));
    const std::optional<InputEvent::State> state = stateOfWord(words.rest());
    if (!words.fits() || !state)
        return std::nullopt;
    return line(LibraryLogger::Input, LogLevel::Debug, EventOnBus{command, *state});
}

/// "[cmd=Stop, state=KeyPressed]"; a value without a name is a number.
std::optional<EventReported> reported(const QString &handler, const QString &event)
{
    Words words(event);
    words.skip(literal("[cmd="));
    const QString commandText = words.upTo(literal(", state="));
    const QString stateText = words.upToLast(literal("]"));
    if (!words.fits())
        return std::nullopt;
    EventReported report;
    report.handler = handler;
    bool isCommand = true;
    if (const auto known = command(commandText))
        report.command = *known;
    else
        report.command = static_cast<InputEvent::Command>(commandText.toInt(&isCommand));
    bool isState = true;
    if (const auto known = state(stateText))
        report.state = *known;
    else if (stateText != literal("Unknown"))
        report.state = static_cast<InputEvent::State>(stateText.toInt(&isState));
    return isCommand && isState ? std::make_optional(report) : std::nullopt;
}

std::optional<EventReported> report(const QString &message)
{
    // From the end: names of devices and identifiers may contain anything.
    const QLatin1String begin = literal("Device: ");
    const QLatin1String middle = literal("; command [cmd=");
    const auto at = message.lastIndexOf(middle);
    if (!message.startsWith(begin) || at < begin.size())
        return std::nullopt;
    const QString handler = message.mid(begin.size(), at - begin.size());
    if (!handler.contains(literal("; id: ")))
        return std::nullopt;
    return reported(handler, message.mid(at + literal("; command ").size()));
}

// How a function is written is up to the core library: only its last word counts.
QString functionName(const QString &scope)
{
    const QString name = scope.section(QLatin1Char('('), 0, 0).trimmed();
    auto begin = name.size();
    while (begin > 0 && (name.at(begin - 1).isLetterOrNumber() || name.at(begin - 1) == '_'))
        --begin;
    return name.mid(begin);
}

std::optional<LibraryLine> entered(const QString &message)
{
    constexpr std::pair<const char *, Function> functions[] = {
        {"BasicInputHandler", Function::Constructor},
        {"addKeyHandler", Function::AddKeyHandler},
        {"addSwitchHandler", Function::AddSwitchHandler},
        {"setKeyListener", Function::SetKeyListener},
        {"setSwitchListener", Function::SetSwitchListener},
        {"selectHandler", Function::SelectHandler},
        {"selectKeyHandler", Function::SelectKeyHandler},
        {"selectSwitchHandler", Function::SelectSwitchHandler},
    };
    Words words(message);
    words.skip(literal("Enter "));
    const QString name = functionName(words.upTo(literal(": ")));
    const QString argument = words.rest();
    for (const auto &[text, function] : functions) {
        if (name == QLatin1String(text))
            return line(LibraryLogger::BasicInputHandler, LogLevel::Trace,
                        Entered{function, argument});
    }
    return std::nullopt;
}

/// The warnings about codes: a literal, a code, a literal, for a second code once more.
std::optional<Complaint> registrationComplaint(const QString &message)
{
    struct Form
    {
        int type;
        const char *before;
        const char *between; ///< two codes; null: one
        const char *after;
    };
    constexpr Form forms[] = {
        {EV_KEY, "Duplicate key in key input map: ", nullptr, ", overwriting old value"},
        {EV_KEY, "Trying to remove a non-existing key ", nullptr, ""},
        {EV_KEY, "Duplicate keys in double key input map: QPair(", ",", "), overwriting old value"},
        {EV_KEY, "Trying to remove a non-existing double key ", " + ", ""},
        {EV_SW, "Duplicate key in switch input map: ", nullptr, ", overwriting old value"},
        {EV_SW, "Trying to remove non-existing switch ", nullptr, ""},
    };
    for (const Form &form : forms) {
        Words words(message);
        if (!words.startsWith(literal(form.before)))
            continue;
        words.skip(literal(form.before));
        Complaint complaint{form.type, {words.number(minInt)}};
        if (form.between)
            complaint.codes += words.skip(literal(form.between)).number(minInt);
        if (words.skip(literal(form.after)).isDone())
            return complaint;
    }
    return std::nullopt;
}

/// "/dev/input/event0", between two literals.
std::optional<QString> path(const QString &message, const char *before, const char *after)
{
    Words words(message);
    const QString path = words.skip(literal(before)).upToLast(literal(after));
    return words.fits() ? std::make_optional(path) : std::nullopt;
}

std::optional<LibraryLine> missingHandlerLine(const QString &message)
{
    const bool isKnown =
        (message.startsWith(literal("Handler ")) && message.contains(literal(" for device "))
         && message.endsWith(literal("does not exists")))
        || path(message, "Linux input listener for ", " does not exists");
    if (!isKnown)
        return std::nullopt;
    return line(LibraryLogger::BasicInputHandler, LogLevel::Error, Complaint{});
}

std::optional<LibraryLine> nodeLine(const QString &message)
{
    constexpr LibraryLogger logger = LibraryLogger::BasicInputHandler;
    if (message.startsWith(literal("Dev /dev/"))) {
        Words words(message);
        const QString node = words.skip(literal("Dev ")).upTo(literal(": "));
        const QString name = words.rest();
        return words.fits() ? line(logger, LogLevel::Trace, NodeNamed{node, name}) : std::nullopt;
    }
    if (const auto node = path(message, " ---> added '", "'"))
        return line(logger, LogLevel::Debug, NodeAdded{*node});
    if (const auto node = path(message, "Removing ", ""))
        return line(logger, LogLevel::Info, NodeRemoved{*node});
    return std::nullopt;
}

std::optional<LibraryLine> handlerLine(const QString &message)
{
    constexpr LibraryLogger logger = LibraryLogger::BasicInputHandler;
    if (message.startsWith(literal("key:"))) {
        Words words(message);
        KeyPassedOn key;
        key.code = words.skip(literal("key:")).number(0, maxCode);
        key.value = words.skip(literal(" value ")).number(minInt);
        return words.isDone() ? line(logger, LogLevel::Debug, key) : std::nullopt;
    }
    if (message.startsWith(literal("Enter ")))
        return entered(message);
    if (const std::optional<EventReported> event = report(message))
        return line(logger, LogLevel::Trace, *event);
    if (std::optional<LibraryLine> node = nodeLine(message))
        return node;
    if (const std::optional<Complaint> complaint = registrationComplaint(message))
        return line(logger, LogLevel::Warn, *complaint);
    return missingHandlerLine(message);
}

std::optional<LibraryLine> openedLine(const QString &message)
{
    struct Form
    {
        const char *before;
        const char *after;
        Result result;
        LogLevel level;
    };
    constexpr Form forms[] = {
        {"Event device ", " ready", Result::Ready, LogLevel::Info},
        {"Event device ", " does not support EV_KEY", Result::NoKeys, LogLevel::Warn},
        {"Event device ", " does not support EV_SW", Result::NoSwitches, LogLevel::Debug},
        {"Cannot open input device ", "", Result::CannotOpen, LogLevel::Error},
    };
    for (const Form &form : forms) {
        if (const auto node = path(message, form.before, form.after))
            return line(LibraryLogger::LinuxInputListener, form.level,
                        ListenerOpened{*node, form.result});
    }
    return std::nullopt;
}

std::optional<LibraryLine> readLine(const QString &message)
{
    Words words(message);
    const QString scope = words.skip(literal("Enter ")).upTo(literal(": "));
    const ReadBegun read{words.number(minInt)};
    if (!words.isDone() || functionName(scope) != literal("readData"))
        return std::nullopt;
    return line(LibraryLogger::LinuxInputListener, LogLevel::Trace, read);
}

std::optional<LibraryLine> recordLine(const QString &message)
{
    Words words(message);
    RecordLogged record;
    record.type = words.skip(literal(" type: ")).number(0, maxCode);
    record.code = words.skip(literal(" code:")).number(0, maxCode);
    record.value = words.skip(literal(" value:")).number(minInt);
    if (!words.isDone())
        return std::nullopt;
    return line(LibraryLogger::LinuxInputListener, LogLevel::Debug, record);
}

std::optional<LibraryLine> identityLine(const QString &message)
{
    constexpr LibraryLogger logger = LibraryLogger::LinuxInputListener;
    Words words(message);
    if (words.startsWith(literal("bustype: "))) {
        const ListenerBus bus{words.skip(literal("bustype: ")).number(0, maxCode)};
        return words.isDone() ? line(logger, LogLevel::Debug, bus) : std::nullopt;
    }
    if (words.startsWith(literal("name: ")))
        return line(logger, LogLevel::Debug, ListenerName{words.skip(literal("name: ")).rest()});
    words.skip(literal("ioctl error: ")).number(minInt);
    return words.isDone() ? line(logger, LogLevel::Debug, TypesUnknown()) : std::nullopt;
}

std::optional<LibraryLine> listenerLine(const QString &message)
{
    constexpr LibraryLogger logger = LibraryLogger::LinuxInputListener;
    // A layout may have trimmed the message.
    if (message.startsWith(literal(" type: ")))
        return recordLine(message);
    if (message.startsWith(literal("type: ")))
        return recordLine(QLatin1Char(' ') + message);
    if (message.startsWith(literal("Enter ")))
        return readLine(message);
    if (std::optional<LibraryLine> opened = openedLine(message))
        return opened;
    if (std::optional<LibraryLine> identity = identityLine(message))
        return identity;
    if (const auto node = path(message, "Error reading from event device ", ""))
        return line(logger, LogLevel::Error, ReadFailed{*node});
    if (path(message, "Short read on event device ", ""))
        return line(logger, LogLevel::Error, Complaint{});
    if (message == literal("Linux Input Listerner already set, ignore"))
        return line(logger, LogLevel::Debug, Aside());
    if (message == literal("Linux Input Listerner does not exists"))
        return line(logger, LogLevel::Warn, Complaint{});
    return std::nullopt;
}

std::optional<LibraryLine> storedLine(const QString &message)
{
    Words words(message);
    words.skip(literal("Stored:("));
    KeysStored stored;
    do {
        if (!stored.keys.isEmpty())
            words.skip(literal(", "));
        KeysStored::Key key;
        key.code = words.skip(literal("input_event: code:")).number(0, maxCode);
        const QString value = words.skip(literal(" value:")).upTo(literal(" time:"));
        key.isPress = value == literal("press");
        if (!key.isPress && value != literal("release"))
            return std::nullopt;
        words.number(0, 23);
        words.skip(literal(":")).number(0, 59);
        words.skip(literal(":")).number(0, 59);
        words.skip(literal(",")).number(0, 999);
        stored.keys += key;
    } while (words.fits() && words.startsWith(literal(", ")));
    if (!words.skip(literal(")")).isDone())
        return std::nullopt;
    return line(LibraryLogger::KeyProcessing, LogLevel::Debug, stored);
}

std::optional<LibraryLine> detectorLine(const QString &message)
{
    constexpr LibraryLogger logger = LibraryLogger::KeyProcessing;
    if (message.startsWith(literal("Stored:")))
        return storedLine(message);
    if (message == literal("Double key press detected and new press event received -> drop"))
        return line(logger, LogLevel::Debug, ThirdKeyDropped());
    if (message == literal("Received release for non existing press -> drop"))
        return line(logger, LogLevel::Debug, ReleaseDropped());
    Words words(message);
    const FoundAlready found{
        words.skip(literal("Found already event for code:")).number(0, maxCode)};
    return words.isDone() ? line(logger, LogLevel::Debug, found) : std::nullopt;
}

} // namespace

std::optional<LibraryLogger> libraryLogger(const QString &name)
{
    constexpr int shortest = 6;
    const auto *const found =
        std::find_if(loggerNames.begin(), loggerNames.end(), [&name](const char *known) {
            return name == QLatin1String(known)
                || (name.size() >= shortest && QLatin1String(known).endsWith(name));
        });
    if (found == loggerNames.end())
        return std::nullopt;
    return static_cast<LibraryLogger>(found - loggerNames.begin());
}

std::optional<LibraryLine> libraryLine(LibraryLogger logger, const QString &message)
{
    switch (logger) {
    case LibraryLogger::Input:
        return inputLine(message);
    case LibraryLogger::BasicInputHandler:
        return handlerLine(message);
    case LibraryLogger::LinuxInputListener:
        return listenerLine(message);
    case LibraryLogger::KeyProcessing:
        return detectorLine(message);
    }
    return std::nullopt;
}

std::optional<LibraryLine> libraryLine(const QString &message)
{
    for (const LibraryLogger logger :
         {LibraryLogger::Input, LibraryLogger::BasicInputHandler, LibraryLogger::LinuxInputListener,
          LibraryLogger::KeyProcessing})
    {
        if (auto found = libraryLine(logger, message))
            return found;
    }
    return std::nullopt;
}

QVector<QPair<QString, QString>> handlerNames(const QString &handler)
{
    const QLatin1String between = literal("; id: ");
    QVector<QPair<QString, QString>> names;
    for (auto at = handler.indexOf(between); at >= 0; at = handler.indexOf(between, at + 1))
        names.append({handler.left(at), handler.mid(at + between.size())});
    return names;
}

} // namespace Vorn::Workbench
