#include "ProfileData.h"

namespace Vorn {

namespace {

template <typename List, typename Data, typename Convert>
void appendAll(List *list, const Rows<Data> &rows, Convert convert)
{
    list->reserve(list->size() + rows.count);
    for (const Data &row : rows)
        list->append(convert(row));
}

QString toText(const TextData &data)
{
    // Qt's conversions would drop a byte order mark.
    return QString(reinterpret_cast<const QChar *>(data.utf16), data.size);
}

KeyMapping toKey(const KeyData &data)
{
    KeyMapping key;
    key.code = data.code;
    key.command = data.command;
    key.immediate = data.immediate;
    if (data.longPress.first) {
        LongPress longPress;
        appendAll(&longPress.timeouts, data.longPress, [](int timeout) { return timeout; });
        longPress.repeat = data.repeat;
        key.longPress = longPress;
    }
    key.bus = data.bus;
    return key;
}

ChordMapping toChord(const ChordData &data)
{
    return {data.first, data.second, data.command, data.bus};
}

SwitchMapping toSwitch(const SwitchData &data)
{
    return {data.code, data.command};
}

HandlerProfile toHandler(const HandlerData &data)
{
    HandlerProfile handler;
    handler.identifiers.clear();
    appendAll(&handler.identifiers, data.identifiers, toText);
    appendAll(&handler.keys, data.keys, toKey);
    appendAll(&handler.chords, data.chords, toChord);
    appendAll(&handler.switches, data.switches, toSwitch);
    handler.positionsAtStart = data.positionsAtStart;
    return handler;
}

DeviceProfile toDevice(const DeviceData &data)
{
    DeviceProfile device;
    if (data.name.utf16)
        device.name = toText(data.name);
    device.bus = data.bus;
    appendAll(&device.handlers, data.handlers, toHandler);
    return device;
}

SelectRule toRule(const RuleData &data)
{
    return {data.command, data.state, toText(data.identifier)};
}

} // namespace

Profile toProfile(const ProfileData &data) noexcept
{
    Profile profile;
    profile.initial = toText(data.initial);
    appendAll(&profile.select, data.select, toRule);
    appendAll(&profile.devices, data.devices, toDevice);
    return profile;
}

} // namespace Vorn
