#include "EventNames.h"

#include "PlainName.h"

#include <libevdev/libevdev.h>
#include <linux/input.h>

namespace Vorn {

namespace {

constexpr int maxEventType = EV_MAX;
// Codes have 16 bits in a record, so a scenario can send ones that no device declares.
constexpr int maxEventCode = 0xFFFF;

std::optional<int> code(int type, const QString &nameOrNumber, int largest)
{
    // The limit matters where libevdev knows a newer kernel than this build does.
    const int value = libevdev_event_code_from_name(static_cast<unsigned>(type),
                                                    plainName(nameOrNumber).constData());
    if (value >= 0 && value <= largest)
        return value;
    return plainNumber(nameOrNumber, largest);
}

QString name(int type, int code)
{
    const char *text =
        libevdev_event_code_get_name(static_cast<unsigned>(type), static_cast<unsigned>(code));
    return text ? QString::fromLatin1(text) : QString::number(code);
}

QStringList names(int type, int largest)
{
    QStringList list;
    for (int code = 0; code <= largest; ++code) {
        const char *text =
            libevdev_event_code_get_name(static_cast<unsigned>(type), static_cast<unsigned>(code));
        if (text)
            list += QString::fromLatin1(text);
    }
    return list;
}

} // namespace

std::optional<int> keyCode(const QString &nameOrNumber)
{
    return code(EV_KEY, nameOrNumber, maxKeyCode);
}

QString keyName(int code)
{
    return name(EV_KEY, code);
}

QStringList keyNames()
{
    return names(EV_KEY, maxKeyCode);
}

std::optional<int> switchCode(const QString &nameOrNumber)
{
    return code(EV_SW, nameOrNumber, maxSwitchCode);
}

QString switchName(int code)
{
    return name(EV_SW, code);
}

QStringList switchNames()
{
    return names(EV_SW, maxSwitchCode);
}

std::optional<int> eventType(const QString &nameOrNumber)
{
    const int type = libevdev_event_type_from_name(plainName(nameOrNumber).constData());
    if (type >= 0 && type <= maxEventType)
        return type;
    return plainNumber(nameOrNumber, maxEventType);
}

QString eventTypeName(int type)
{
    const char *text = libevdev_event_type_get_name(static_cast<unsigned>(type));
    return text ? QString::fromLatin1(text) : QString::number(type);
}

std::optional<int> eventCode(int type, const QString &nameOrNumber)
{
    return code(type, nameOrNumber, maxEventCode);
}

QString eventCodeName(int type, int code)
{
    return name(type, code);
}

QString valueName(int type, int value)
{
    if (type == EV_KEY && value >= 0 && value <= 2)
        return QLatin1String(value == 0 ? "release" : value == 1 ? "press" : "repeat");
    if (type == EV_SW && value >= 0 && value <= 1)
        return QLatin1String(value ? "on" : "off");
    return QString::number(value);
}

bool isTypingKey(int keyCode)
{
    const auto isBetween = [keyCode](int first, int last) {
        return keyCode >= first && keyCode <= last;
    };
    // The codes follow the rows of a keyboard, then come its keypad, the keys of other countries,
    // those of Braille, of telephones and of remote controls.
    return isBetween(KEY_1, KEY_EQUAL) || isBetween(KEY_Q, KEY_RIGHTBRACE)
        || isBetween(KEY_A, KEY_GRAVE) || isBetween(KEY_BACKSLASH, KEY_SLASH)
        || keyCode == KEY_SPACE || keyCode == KEY_KPASTERISK || isBetween(KEY_KP7, KEY_KPDOT)
        || keyCode == KEY_102ND || keyCode == KEY_RO || keyCode == KEY_YEN || keyCode == KEY_KPSLASH
        || keyCode == KEY_KPEQUAL || keyCode == KEY_KPCOMMA || keyCode == KEY_KPJPCOMMA
        || keyCode == KEY_KPPLUSMINUS || keyCode == KEY_QUESTION
        || isBetween(KEY_KPLEFTPAREN, KEY_KPRIGHTPAREN)
        || isBetween(KEY_NUMERIC_0, KEY_NUMERIC_POUND) || isBetween(KEY_NUMERIC_A, KEY_NUMERIC_D)
        || isBetween(KEY_NUMERIC_11, KEY_NUMERIC_12) || isBetween(KEY_TEEN, KEY_TWEN)
        || isBetween(KEY_BRL_DOT1, KEY_BRL_DOT10) || isBetween(KEY_DOLLAR, KEY_EURO);
}

} // namespace Vorn
