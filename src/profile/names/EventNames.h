#ifndef VORN_PROFILE_EVENTNAMES_H
#define VORN_PROFILE_EVENTNAMES_H

#include <QString>
#include <QStringList>

#include <optional>

namespace Vorn {

/// @file
/// The names of event types and codes in profiles and scenarios, in both directions.
/// Names are case-sensitive.

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

/// Whether a key types a letter, a digit or a sign, so that its records reveal what was typed.
bool isTypingKey(int keyCode);

} // namespace Vorn

#endif
