#ifndef VORN_WORKBENCH_PROFILE_H
#define VORN_WORKBENCH_PROFILE_H

#include "Diagnostic.h"
#include "Input.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

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
    /// Registered by the bus-filtered forms, so only where the device hangs on this bus.
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

/// What is registered under one or several identifiers of a device: one key handler, if there are
/// keys or chords, and one switch handler, if there are switches.
struct HandlerProfile
{
    QStringList identifiers{QString()};
    QVector<KeyMapping> keys;
    QVector<ChordMapping> chords;
    QVector<SwitchMapping> switches;
    /// Whether the switches' positions are asked for when the device arrives.
    bool positionsAtStart = false;
};

/// What is registered for the devices of a name, of a bus, of both, or of neither: all others.
struct DeviceProfile
{
    std::optional<QString> name; ///< the kernel's name, whole
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
struct Profile
{
    QString initial; ///< the identifier that is selected at first
    QVector<DeviceProfile> devices; ///< the first that fits a device is used
    QVector<SelectRule> select;

    /// Null if none fits.
    const DeviceProfile *deviceFor(const QString &name, InputEvent::Bus bus) const;
    /// Every identifier that is mentioned, each once, in the order of the file.
    QStringList identifiers() const;
};

struct ParsedProfile
{
    Profile profile; ///< meaningless if there are errors
    Diagnostics diagnostics; ///< in the order of the file
};

/// Reads a profile (JSON) and finds all mistakes in it. Never fails otherwise, whatever @p text is.
/// @param file for the diagnostics
ParsedProfile parseProfile(const QByteArray &text, const QString &file);

/// Reads a profile from a file.
ParsedProfile loadProfile(const QString &path);

} // namespace Vorn::Workbench

#endif
