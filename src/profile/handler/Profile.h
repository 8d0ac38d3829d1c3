#ifndef VORN_PROFILE_PROFILE_H
#define VORN_PROFILE_PROFILE_H

#include "vorn_profile_export.h"
#include <vorn/input/Input.h>

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace Vorn {

/// Arguments of `BasicKeyInputHandler::enableLongPress`.
struct LongPress
{
    QList<int> timeouts; ///< ms, not empty
    bool repeat = false;
};

/// A registered key.
struct KeyMapping
{
    int code = 0;
    InputEvent::Command command = InputEvent::None;
    bool immediate = false;
    std::optional<LongPress> longPress;
    /// Registered by the bus-filtered forms, so only for devices attached to this bus.
    std::optional<InputEvent::Bus> bus;
};

/// A registered pair of keys.
struct ChordMapping
{
    int first = 0;
    int second = 0;
    InputEvent::Command command = InputEvent::None;
    std::optional<InputEvent::Bus> bus; ///< as with keys
};

/// A registered switch.
struct SwitchMapping
{
    int code = 0;
    InputEvent::Command command = InputEvent::None;
};

/// What is registered for a device under one or several identifiers: one key handler if there are
/// keys or chords, and one switch handler if there are switches.
struct HandlerProfile
{
    QStringList identifiers{QString()};
    QVector<KeyMapping> keys;
    QVector<ChordMapping> chords;
    QVector<SwitchMapping> switches;
    /// Whether the positions of the switches are reported when the device arrives.
    bool positionsAtStart = false;
};

/// What is registered for the devices with a name, on a bus, or both; for all others if neither is
/// given.
struct DeviceProfile
{
    std::optional<QString> name; ///< the kernel's, in full
    std::optional<InputEvent::Bus> bus;
    QVector<HandlerProfile> handlers;
};

/// "When this event is published, select that identifier."
struct SelectRule
{
    InputEvent::Command command = InputEvent::None;
    InputEvent::State state = InputEvent::KeyReleased;
    QString identifier;
};

/// What a product registers with the library. A plain value.
struct VORN_PROFILE_EXPORT Profile
{
    QString initial; ///< the identifier selected at the start
    QVector<DeviceProfile> devices; ///< the first that matches a device is used
    QVector<SelectRule> select;

    /// Null if none matches.
    const DeviceProfile *deviceFor(const QString &name, InputEvent::Bus bus) const;
    /// Every identifier mentioned, each once, in the order of the file.
    QStringList identifiers() const;
};

/// @name Equality
/// Two that are equal register the same.
/// @{
VORN_PROFILE_EXPORT bool operator==(const LongPress &one, const LongPress &other);
VORN_PROFILE_EXPORT bool operator==(const KeyMapping &one, const KeyMapping &other);
VORN_PROFILE_EXPORT bool operator==(const ChordMapping &one, const ChordMapping &other);
VORN_PROFILE_EXPORT bool operator==(const SwitchMapping &one, const SwitchMapping &other);
VORN_PROFILE_EXPORT bool operator==(const HandlerProfile &one, const HandlerProfile &other);
VORN_PROFILE_EXPORT bool operator==(const DeviceProfile &one, const DeviceProfile &other);
VORN_PROFILE_EXPORT bool operator==(const SelectRule &one, const SelectRule &other);
VORN_PROFILE_EXPORT bool operator==(const Profile &one, const Profile &other);
/// @}

} // namespace Vorn

#endif
