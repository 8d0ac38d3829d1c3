#ifndef VORN_PROFILE_COMMANDNAMES_H
#define VORN_PROFILE_COMMANDNAMES_H

#include "Input.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace Vorn {

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
/// The same for people: "press", "release", "long press", "on" or "off".
QString stateWord(InputEvent::State state);

} // namespace Vorn

#endif
