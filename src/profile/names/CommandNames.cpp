#include "CommandNames.h"

#include "PlainName.h"

#include <QMetaEnum>

#include <iterator>

namespace Vorn {

namespace {

// By number. Unlike commands and buses, the states are not known to Qt's meta-object system.
constexpr const char *stateTexts[] = {"NoState",      "KeyPressed",    "KeyReleased",
                                      "KeyLongPress", "SwitchEnabled", "SwitchDisabled"};

} // namespace

std::optional<InputEvent::Command> command(const QString &name)
{
    // Qt looks up "16" as a name and does not find it, so numbers are refused here.
    bool isKnown = false;
    const int value = QMetaEnum::fromType<InputEvent::Command>().keyToValue(
        plainName(name).constData(), &isKnown);
    if (!isKnown)
        return std::nullopt;
    return static_cast<InputEvent::Command>(value);
}

QString commandName(InputEvent::Command command)
{
    return InputEvent(command, InputEvent::NoState, InputEvent::Bus::NoBus).cmdToString();
}

QStringList commandNames()
{
    const auto commands = QMetaEnum::fromType<InputEvent::Command>();
    QStringList list;
    for (int i = 0; i < commands.keyCount(); ++i)
        list += QString::fromLatin1(commands.key(i));
    return list;
}

bool isCharacter(InputEvent::Command command)
{
    return command >= InputEvent::CharSpace && command <= InputEvent::CharTilde;
}

std::optional<InputEvent::State> state(const QString &name)
{
    const auto index = stateNames().indexOf(name);
    if (index < 0)
        return std::nullopt;
    // The list leaves out NoState, which is 0.
    return static_cast<InputEvent::State>(index + 1);
}

QString stateName(InputEvent::State state)
{
    const auto index = static_cast<std::size_t>(state);
    return index < std::size(stateTexts) ? QString::fromLatin1(stateTexts[index])
                                         : QString::number(static_cast<int>(state));
}

QString stateWord(InputEvent::State state)
{
    switch (state) {
    case InputEvent::KeyPressed:
        return QStringLiteral("press");
    case InputEvent::KeyReleased:
        return QStringLiteral("release");
    case InputEvent::KeyLongPress:
        return QStringLiteral("long press");
    case InputEvent::SwitchEnabled:
        return QStringLiteral("on");
    case InputEvent::SwitchDisabled:
        return QStringLiteral("off");
    case InputEvent::NoState:
        break;
    }
    return stateName(state);
}

QStringList stateNames()
{
    QStringList list;
    for (int i = InputEvent::KeyPressed; i <= InputEvent::SwitchDisabled; ++i)
        list += stateName(static_cast<InputEvent::State>(i));
    return list;
}

} // namespace Vorn
