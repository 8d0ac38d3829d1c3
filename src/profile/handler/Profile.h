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

/// @file
/// A key map as a value: what a profile says, and what is registered.

/// Arguments of `BasicKeyInputHandler::enableLongPress`.
struct LongPress
{
    QList<int> timeouts; ///< ms, not empty
    bool repeat = false; ///< whether there are long presses after the first
};

/// A registered key.
struct KeyMapping
{
    int code = 0; ///< `KEY_OK` …, 0 to 767
    InputEvent::Command command = InputEvent::None; ///< what it means
    bool immediate = false; ///< reported on the press, not as a click on the release
    std::optional<LongPress> longPress; ///< none: it has no long press
    /// Registered by the bus-filtered forms, so only for devices attached to this bus.
    std::optional<InputEvent::Bus> bus;
};

/// A registered pair of keys.
struct ChordMapping
{
    int first = 0; ///< code, 0 to 767
    int second = 0; ///< code, 0 to 767
    InputEvent::Command command = InputEvent::None; ///< what both together mean
    std::optional<InputEvent::Bus> bus; ///< as with keys
};

/// A registered switch.
struct SwitchMapping
{
    int code = 0; ///< `SW_LINEIN_INSERT` …
    InputEvent::Command command = InputEvent::None; ///< what it means
};

/// What is registered for a device under one or several identifiers: one key handler if there are
/// keys or chords, and one switch handler if there are switches.
struct HandlerProfile
{
    QStringList identifiers{QString()}; ///< those that it is registered under, not empty
    QVector<KeyMapping> keys; ///< in the order of registration
    QVector<ChordMapping> chords; ///< registered after the keys
    QVector<SwitchMapping> switches; ///< in the order of registration
    /// Whether the positions of the switches are reported when the device arrives.
    bool positionsAtStart = false;
};

/// What is registered for the devices with a name, on a bus, or both; for all others if neither is
/// given.
struct DeviceProfile
{
    std::optional<QString> name; ///< the kernel's, in full
    std::optional<InputEvent::Bus> bus; ///< the library's
    QVector<HandlerProfile> handlers; ///< of several with an identifier, the last is used
};

/// "When this event is published, select that identifier."
struct SelectRule
{
    InputEvent::Command command = InputEvent::None; ///< of the event
    InputEvent::State state = InputEvent::KeyReleased; ///< of the event
    QString identifier; ///< what is selected then
};

/// What a product registers with the library. A plain value.
struct VORN_PROFILE_EXPORT Profile
{
    QString initial; ///< the identifier selected at the start
    QVector<DeviceProfile> devices; ///< the first that matches a device is used
    QVector<SelectRule> select; ///< the first that an event fulfils counts

    /// The entry that a device uses.
    /// @param name the kernel's name for the device
    /// @param bus the library's bus of the device
    /// @return owned by the profile; null if none matches
    const DeviceProfile *deviceFor(const QString &name, InputEvent::Bus bus) const;
    /// Every identifier that is mentioned.
    /// @return each once, in the order of the file
    QStringList identifiers() const;
};

/// @name Equality
/// Two that are equal register the same.
/// @{

/// Compares all members, identifiers and their order included.
/// @param one,other the values
/// @return whether they are equal
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
