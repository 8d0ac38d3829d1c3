#include "CodeNames.h"

#include <QHash>
#include <QMetaEnum>
#include <QVector>

#include <libevdev/libevdev.h>
#include <linux/input.h>

#include <algorithm>
#include <numeric>

namespace Vorn::Workbench {

namespace {

constexpr int maxEventType = EV_MAX;
constexpr int maxEventCode = 0xFFFF;
constexpr int maxBus = 0xFFFF;

struct KernelBus
{
    const char *name;
    int number;
    InputEvent::Bus bus;
};

constexpr KernelBus kernelBuses[] = {
    {"BUS_PCI", BUS_PCI, InputEvent::Bus::PCI},
    {"BUS_ISAPNP", BUS_ISAPNP, InputEvent::Bus::NoBus},
    {"BUS_USB", BUS_USB, InputEvent::Bus::USB},
    {"BUS_HIL", BUS_HIL, InputEvent::Bus::NoBus},
    {"BUS_BLUETOOTH", BUS_BLUETOOTH, InputEvent::Bus::Bluetooth},
    {"BUS_VIRTUAL", BUS_VIRTUAL, InputEvent::Bus::NoBus},
    {"BUS_ISA", BUS_ISA, InputEvent::Bus::NoBus},
    {"BUS_I8042", BUS_I8042, InputEvent::Bus::NoBus},
    {"BUS_XTKBD", BUS_XTKBD, InputEvent::Bus::NoBus},
    {"BUS_RS232", BUS_RS232, InputEvent::Bus::NoBus},
    {"BUS_GAMEPORT", BUS_GAMEPORT, InputEvent::Bus::NoBus},
    {"BUS_PARPORT", BUS_PARPORT, InputEvent::Bus::NoBus},
    {"BUS_AMIGA", BUS_AMIGA, InputEvent::Bus::NoBus},
    {"BUS_ADB", BUS_ADB, InputEvent::Bus::ADB},
    {"BUS_I2C", BUS_I2C, InputEvent::Bus::I2C},
    {"BUS_HOST", BUS_HOST, InputEvent::Bus::LocalUI},
    {"BUS_GSC", BUS_GSC, InputEvent::Bus::NoBus},
    {"BUS_ATARI", BUS_ATARI, InputEvent::Bus::NoBus},
    {"BUS_SPI", BUS_SPI, InputEvent::Bus::SPI},
    {"BUS_RMI", BUS_RMI, InputEvent::Bus::NoBus},
    {"BUS_CEC", BUS_CEC, InputEvent::Bus::CEC},
    {"BUS_INTEL_ISHTP", BUS_INTEL_ISHTP, InputEvent::Bus::NoBus},
};

constexpr const char *stateTexts[] = {"NoState",      "KeyPressed",    "KeyReleased",
                                      "KeyLongPress", "SwitchEnabled", "SwitchDisabled"};

/// Other keys whose use is as plain as that of those whose names say it.
constexpr struct
{
    int code;
    InputEvent::Command command;
} usualCommands[] = {
    {KEY_OK, InputEvent::Confirm},
    {KEY_ENTER, InputEvent::Confirm},
    {KEY_SELECT, InputEvent::Confirm},
    {KEY_ESC, InputEvent::Cancel},
    {KEY_BACK, InputEvent::Cancel},
    {KEY_EXIT, InputEvent::Cancel},
    {KEY_CANCEL, InputEvent::Cancel},
    {KEY_LEFT, InputEvent::CursorLeft},
    {KEY_RIGHT, InputEvent::CursorRight},
    {KEY_UP, InputEvent::CursorUp},
    {KEY_DOWN, InputEvent::CursorDown},
    {KEY_PAGEUP, InputEvent::CursorPageUp},
    {KEY_PAGEDOWN, InputEvent::CursorPageDown},
    {KEY_PLAY, InputEvent::StartPlay},
    {KEY_PLAYPAUSE, InputEvent::StartPlay},
    {KEY_PLAYCD, InputEvent::StartPlay},
    {KEY_PAUSE, InputEvent::Pause},
    {KEY_PAUSECD, InputEvent::Pause},
    {KEY_STOP, InputEvent::Stop},
    {KEY_STOPCD, InputEvent::Stop},
    {KEY_PREVIOUSSONG, InputEvent::Previous},
    {KEY_PREVIOUS, InputEvent::Previous},
    {KEY_NEXTSONG, InputEvent::Next},
    {KEY_NEXT, InputEvent::Next},
    {KEY_MEDIA_REPEAT, InputEvent::Repeat},
    {KEY_SHUFFLE, InputEvent::Shuffle},
    {KEY_VOLUMEUP, InputEvent::VolumeUp},
    {KEY_VOLUMEDOWN, InputEvent::VolumeDown},
    {KEY_MUTE, InputEvent::Mute},
    {KEY_FASTFORWARD, InputEvent::PlaySpeedUp},
    {KEY_REWIND, InputEvent::PlaySpeedDown},
    {KEY_POWER, InputEvent::Power},
    {KEY_SLEEP, InputEvent::Sleep},
    {KEY_HOMEPAGE, InputEvent::JumpHome},
    {KEY_HOME, InputEvent::JumpHome},
    {KEY_SETUP, InputEvent::JumpSettings},
    {KEY_CONFIG, InputEvent::JumpSettings},
    {KEY_FAVORITES, InputEvent::JumpFavorites},
    {KEY_INFO, InputEvent::Info},
    {KEY_SEARCH, InputEvent::Search},
    {KEY_F3, InputEvent::Search},
    {KEY_MENU, InputEvent::Context},
    {KEY_CONTEXT_MENU, InputEvent::Context},
    {KEY_WPS_BUTTON, InputEvent::WPS},
    {KEY_BLUETOOTH, InputEvent::Bluetooth},
    {KEY_MICMUTE, InputEvent::MicMute},
    {KEY_PHONE, InputEvent::AnswerCall},
    {KEY_BACKSPACE, InputEvent::Backspace},
    {KEY_DELETE, InputEvent::Delete},
    {KEY_SPACE, InputEvent::CharSpace},
};

/// The name as C functions take it. Null for one that they would take for another: they stop at a
/// null character, and Qt's take "InputEvent::Stop" for "Stop".
QByteArray plain(const QString &name)
{
    const bool isPlain = !name.contains(QChar(0)) && !name.contains(QLatin1Char(':'));
    return isPlain ? name.toUtf8() : QByteArray();
}

std::optional<int> number(const QString &text, int largest)
{
    bool isNumber = false;
    // Base 0 would take a leading zero for octal.
    const int base = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? 16 : 10;
    const int value = text.toInt(&isNumber, base);
    if (!isNumber || value < 0 || value > largest || text.startsWith(QLatin1Char('+')))
        return std::nullopt;
    return value;
}

std::optional<int> code(int type, const QString &nameOrNumber, int largest)
{
    const int value =
        libevdev_event_code_from_name(static_cast<unsigned>(type), plain(nameOrNumber).constData());
    if (value >= 0 && value <= largest)
        return value;
    return number(nameOrNumber, largest);
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

/// How many characters have to be inserted, removed, replaced or swapped with their neighbour to
/// make one text of the other.
int distance(const QString &a, const QString &b)
{
    QVector<int> beforeLast(b.size() + 1);
    QVector<int> last(b.size() + 1);
    QVector<int> row(b.size() + 1);
    std::iota(last.begin(), last.end(), 0);
    for (int i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int change = a.at(i - 1) == b.at(j - 1) ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
            if (i > 1 && j > 1 && a.at(i - 1) == b.at(j - 2) && a.at(i - 2) == b.at(j - 1))
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last.last();
}

/// "VOLUMEUP" of "KEY_VOLUMEUP": people forget the prefix, or mix up which one it is.
QString withoutPrefix(const QString &name)
{
    for (const char *prefix : {"KEY_", "BTN_", "SW_", "BUS_", "EV_"}) {
        if (name.startsWith(QLatin1String(prefix), Qt::CaseInsensitive))
            return name.mid(static_cast<int>(qstrlen(prefix)));
    }
    return name;
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
    const int type = libevdev_event_type_from_name(plain(nameOrNumber).constData());
    if (type >= 0 && type <= maxEventType)
        return type;
    return number(nameOrNumber, maxEventType);
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

std::optional<InputEvent::Command> command(const QString &name)
{
    bool isKnown = false;
    const int value =
        QMetaEnum::fromType<InputEvent::Command>().keyToValue(plain(name).constData(), &isKnown);
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
    const int index = stateNames().indexOf(name);
    if (index < 0)
        return std::nullopt;
    return static_cast<InputEvent::State>(index + 1);
}

QString stateName(InputEvent::State state)
{
    const auto index = static_cast<std::size_t>(state);
    return index < std::size(stateTexts) ? QString::fromLatin1(stateTexts[index])
                                         : QString::number(static_cast<int>(state));
}

QStringList stateNames()
{
    QStringList list;
    for (int i = InputEvent::KeyPressed; i <= InputEvent::SwitchDisabled; ++i)
        list += stateName(static_cast<InputEvent::State>(i));
    return list;
}

std::optional<InputEvent::Bus> bus(const QString &name)
{
    bool isKnown = false;
    const int value =
        QMetaEnum::fromType<InputEvent::Bus>().keyToValue(plain(name).constData(), &isKnown);
    if (!isKnown)
        return std::nullopt;
    return static_cast<InputEvent::Bus>(value);
}

QString busName(InputEvent::Bus bus)
{
    const char *text = QMetaEnum::fromType<InputEvent::Bus>().valueToKey(static_cast<int>(bus));
    return text ? QString::fromLatin1(text) : QString::number(static_cast<int>(bus));
}

QStringList busNames()
{
    const auto buses = QMetaEnum::fromType<InputEvent::Bus>();
    QStringList list;
    for (int i = 0; i < buses.keyCount(); ++i)
        list += QString::fromLatin1(buses.key(i));
    return list;
}

std::optional<int> kernelBus(const QString &nameOrNumber)
{
    for (const KernelBus &known : kernelBuses) {
        if (nameOrNumber == QLatin1String(known.name))
            return known.number;
    }
    return number(nameOrNumber, maxBus);
}

QString kernelBusName(int bus)
{
    for (const KernelBus &known : kernelBuses) {
        if (bus == known.number)
            return QString::fromLatin1(known.name);
    }
    return QString::number(bus);
}

InputEvent::Bus libraryBus(int kernelBus, const QString &deviceName)
{
    if (deviceName == QLatin1String("hostlink"))
        return InputEvent::Bus::Hostlink;
    for (const KernelBus &known : kernelBuses) {
        if (kernelBus == known.number)
            return known.bus;
    }
    return InputEvent::Bus::NoBus;
}

int kernelBusOf(InputEvent::Bus bus)
{
    if (bus == InputEvent::Bus::NoBus)
        return BUS_VIRTUAL;
    for (const KernelBus &known : kernelBuses) {
        if (bus == known.bus)
            return known.number;
    }
    return BUS_HOST;
}

std::optional<InputEvent::Command> usualKeyCommand(int keyCode)
{
    for (const auto &usual : usualCommands) {
        if (usual.code == keyCode)
            return usual.command;
    }
    // Letters and digits type themselves.
    const QString name = keyName(keyCode);
    if (name.size() == 5 && isTypingKey(keyCode)) {
        const QChar character = name.at(4).toLower();
        if (character.isLetterOrNumber())
            return static_cast<InputEvent::Command>(1000 + character.toLatin1());
    }
    return std::nullopt;
}

std::optional<InputEvent::Command> usualSwitchCommand(int switchCode)
{
    switch (switchCode) {
    case SW_LINEIN_INSERT:
        return InputEvent::SWLineIn;
    case SW_LINEOUT_INSERT:
    case SW_HEADPHONE_INSERT:
        return InputEvent::SWLineOut;
    case SW_MICROPHONE_INSERT:
        return InputEvent::SWMicIn;
    default:
        return std::nullopt;
    }
}

bool isTypingKey(int keyCode)
{
    const auto isBetween = [keyCode](int first, int last) {
        return keyCode >= first && keyCode <= last;
    };
    return isBetween(KEY_1, KEY_EQUAL) || isBetween(KEY_Q, KEY_RIGHTBRACE)
        || isBetween(KEY_A, KEY_GRAVE) || isBetween(KEY_BACKSLASH, KEY_SLASH)
        || keyCode == KEY_SPACE || keyCode == KEY_KPASTERISK || isBetween(KEY_KP7, KEY_KPDOT)
        || keyCode == KEY_102ND || keyCode == KEY_RO || keyCode == KEY_YEN || keyCode == KEY_KPSLASH
        || keyCode == KEY_KPEQUAL || keyCode == KEY_KPCOMMA
        || isBetween(KEY_KPLEFTPAREN, KEY_KPRIGHTPAREN)
        || isBetween(KEY_NUMERIC_0, KEY_NUMERIC_POUND) || isBetween(KEY_NUMERIC_A, KEY_NUMERIC_D)
        || isBetween(KEY_DOLLAR, KEY_EURO);
}

QString closest(const QString &unknown, const QStringList &known)
{
    // Longer texts are no name that was mistyped, and would take long to compare.
    if (unknown.isEmpty() || unknown.size() > 64)
        return {};
    const QString wanted = withoutPrefix(unknown).toLower();
    QString best;
    int bestDistance = static_cast<int>(std::max(1, wanted.size() / 3)) + 1;
    for (const QString &candidate : known) {
        const QString text = withoutPrefix(candidate).toLower();
        if (std::abs(text.size() - wanted.size()) >= bestDistance)
            continue;
        const int found = distance(wanted, text);
        if (found < bestDistance) {
            bestDistance = found;
            best = candidate;
        }
    }
    return best;
}

QString suggestion(const QString &unknown, const QStringList &known)
{
    const QString meant = closest(unknown, known);
    return meant.isEmpty() ? QString() : QStringLiteral(", did you mean '%1'?").arg(meant);
}

} // namespace Vorn::Workbench
