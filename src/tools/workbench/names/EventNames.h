#ifndef VORN_WORKBENCH_CODENAMES_H
#define VORN_WORKBENCH_CODENAMES_H

#include "Input.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// The names of codes, commands and buses, as people write them in profiles and scenarios, and
/// back. Names are case-sensitive.
namespace Vorn::Workbench {

/// Largest key code that a device can declare.
constexpr int maxKeyCode = 767;
/// Largest switch code that a device can declare.
constexpr int maxSwitchCode = 16;

/// Code of a key or button: "KEY_INFO", "BTN_0", or a number, "358" or "0x166", up to #maxKeyCode.
std::optional<int> keyCode(const QString &nameOrNumber);
/// "KEY_INFO"; the number in decimal for a code without a name.
QString keyName(int code);
QStringList keyNames();

/// Code of a switch: "SW_LINEIN_INSERT" or a number up to #maxSwitchCode.
std::optional<int> switchCode(const QString &nameOrNumber);
QString switchName(int code);
QStringList switchNames();

/// Type of an event: "EV_KEY" or a number up to 31.
std::optional<int> eventType(const QString &nameOrNumber);
QString eventTypeName(int type);
/// Code of any event type: "SYN_REPORT", "MSC_SCAN", "KEY_INFO", or a number up to 65535.
std::optional<int> eventCode(int type, const QString &nameOrNumber);
/// Name of a code of any type; the number for one without a name.
QString eventCodeName(int type, int code);
/// What a value means: "press", "release", "repeat", "on", "off", or the number.
QString valueName(int type, int value);

/// "VolumeUp"; numbers are not accepted.
std::optional<InputEvent::Command> command(const QString &name);
QString commandName(InputEvent::Command command);
QStringList commandNames();
/// Whether the command stands for a typed character: "CharSpace" to "CharTilde", the digits
/// included.
bool isCharacter(InputEvent::Command command);

/// "KeyPressed", … "SwitchDisabled"; not "NoState".
std::optional<InputEvent::State> state(const QString &name);
QString stateName(InputEvent::State state);
QStringList stateNames();

/// "Hostlink", "LocalUI", … and "NoBus".
std::optional<InputEvent::Bus> bus(const QString &name);
QString busName(InputEvent::Bus bus);
QStringList busNames();

/// The kernel's bus type by name, "BUS_USB", or number, "3" or "0x03".
std::optional<int> kernelBus(const QString &nameOrNumber);
/// "BUS_USB"; the number for one without a name.
QString kernelBusName(int bus);
/// The library's bus of a device with that kernel bus and kernel name.
InputEvent::Bus libraryBus(int kernelBus, const QString &deviceName);
/// A kernel bus of which libraryBus() makes @p bus; BUS_VIRTUAL for `NoBus`. A device is on
/// `Hostlink` by its name, so that gives BUS_HOST.
int kernelBusOf(InputEvent::Bus bus);

/// The command that a key or a switch of that code is usually given, where there is one:
/// `VolumeUp` for KEY_VOLUMEUP, `SWLineIn` for SW_LINEIN_INSERT.
std::optional<InputEvent::Command> usualKeyCommand(int keyCode);
std::optional<InputEvent::Command> usualSwitchCommand(int switchCode);

/// Whether a key types a letter, a digit or a sign, so that its records tell what was typed.
bool isTypingKey(int keyCode);

/// The one of @p known that @p unknown was probably meant to be, without regard to case; empty if
/// none is close.
QString closest(const QString &unknown, const QStringList &known);

/// ", did you mean 'VolumeUp'?" or nothing, to end a message about an unknown name.
QString suggestion(const QString &unknown, const QStringList &known);

} // namespace Vorn::Workbench

#endif
