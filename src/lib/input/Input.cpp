#include "Input.h"

#include "Profiler.h"

#include <QMetaEnum>
#include <QSharedData>

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

namespace {

log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Input"));

QString stateText(InputEvent::State state)
{
    switch (state) {
    case InputEvent::NoState:
        return QStringLiteral("Unknown");
    case InputEvent::KeyPressed:
        return QStringLiteral("KeyPressed");
    case InputEvent::KeyReleased:
        return QStringLiteral("KeyReleased");
    case InputEvent::KeyLongPress:
        return QStringLiteral("KeyLongPress");
    case InputEvent::SwitchEnabled:
        return QStringLiteral("SwitchEnabled");
    case InputEvent::SwitchDisabled:
        return QStringLiteral("SwitchDisabled");
    }
    return QString::number(state);
}

template <typename Enum>
QString enumText(Enum value)
{
    const char *name = QMetaEnum::fromType<Enum>().valueToKey(static_cast<int>(value));
    return name ? QString::fromLatin1(name) : QString::number(static_cast<int>(value));
}

// The words of the event bus's log line. They differ from InputEvent::toString(), and log filters
// rely on both.
const char *stateWord(InputEvent::State state)
{
    switch (state) {
    case InputEvent::KeyPressed:
        return "press";
    case InputEvent::KeyReleased:
        return "release";
    case InputEvent::KeyLongPress:
        return "long press";
    case InputEvent::SwitchEnabled:
        return "switch enable";
    case InputEvent::SwitchDisabled:
        return "switch disable";
    case InputEvent::NoState:
        break;
    }
    return "Unknown";
}

} // namespace

class InputEvent::Data : public QSharedData
{
public:
    Data(Command command, State state, Bus bus)
        : m_command(command)
        , m_state(state)
        , m_bus(bus)
    { }

    const Command m_command;
    const State m_state;
    const Bus m_bus;
};

InputEvent::InputEvent()
    : InputEvent(None, NoState, Bus::NoBus)
{ }

InputEvent::InputEvent(Command command, State state, Bus bus)
    : d(new Data(command, state, bus))
{ }

InputEvent::InputEvent(const InputEvent &other) = default;

InputEvent &InputEvent::operator=(const InputEvent &other) = default;

InputEvent::~InputEvent() = default;

InputEvent::Command InputEvent::command() const
{
    return d->m_command;
}

InputEvent::State InputEvent::state() const
{
    return d->m_state;
}

InputEvent::Bus InputEvent::bus() const
{
    return d->m_bus;
}

QString InputEvent::cmdToString() const
{
    return enumText(d->m_command);
}

QString InputEvent::toString() const
{
    if (d->m_bus == Bus::NoBus)
        return QStringLiteral("[cmd=%1, state=%2]").arg(cmdToString(), stateText(d->m_state));
    return QStringLiteral("[cmd=%1, state=%2, bus=%3]")
        .arg(cmdToString(), stateText(d->m_state), enumText(d->m_bus));
}

Input *Input::s_instance = nullptr;

Input::Input()
{
    qRegisterMetaType<InputEvent>("InputEvent");
}

Input *Input::instance()
{
    if (!s_instance)
        s_instance = new Input();
    return s_instance;
}

void Input::reportInputEvent(InputEvent event)
{
    instance()->emitInputEvent(event);
}

void Input::emitInputEvent(InputEvent event)
{
    // The command's number, not its name: remote log filters match this line.
    LOG4CPLUS_DEBUG(logger,
                    "Vorn::InputEvent(" << static_cast<int>(event.command()) << ") "
                                        << stateWord(event.state()));
    Profiler::instance()->createWatcher(Profiler::UIResponseWatcher(), Profiler::UIDrawEvent());
    Q_EMIT inputEvent(event);
}
