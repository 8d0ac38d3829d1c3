#ifndef VORN_WORKBENCH_PROFILEREADER_H
#define VORN_WORKBENCH_PROFILEREADER_H

#include "JsonText.h"
#include "Profile.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// Where the parts of a handler stand; the lists are parallel to those of HandlerProfile.
struct HandlerPlaces
{
    JsonValue handler;
    QVector<JsonValue> identifiers; ///< the handler itself for one without identifiers
    QVector<JsonValue> keys;
    QVector<JsonValue> chords;
    QVector<JsonValue> switches;
};

/// Where the parts of a device entry stand, parallel to DeviceProfile.
struct DevicePlaces
{
    JsonValue device;
    QVector<HandlerPlaces> handlers;
};

/// Where the parts of a profile stand, parallel to Profile.
struct ProfilePlaces
{
    JsonValue root;
    QVector<JsonValue> select;
    QVector<DevicePlaces> devices;
};

/// Makes a profile of JSON. Parts with errors are left out of it.
class ProfileReader
{
public:
    /// Reads the whole of a valid text.
    ProfileReader(const JsonText &text, Findings *findings);

    const Profile &profile() const { return m_profile; }
    const ProfilePlaces &places() const { return m_places; }

private:
    using Members = QHash<QString, JsonValue>;
    struct CodeKind;

    void readRoot();
    void readDevice(const JsonValue &value);
    void readHandler(const JsonValue &value, DeviceProfile *device, DevicePlaces *places);
    void readIdentifiers(const Members &members, HandlerProfile *handler, HandlerPlaces *places);
    std::optional<KeyMapping> readKey(const JsonValue &value);
    std::optional<ChordMapping> readChord(const JsonValue &value);
    std::optional<SwitchMapping> readSwitch(const JsonValue &value);
    std::optional<SelectRule> readRule(const JsonValue &value);
    std::optional<LongPress> readLongPress(const JsonValue &value);
    std::optional<int> readTimeout(const JsonValue &value);
    std::optional<int> readCode(const JsonValue &value, const CodeKind &kind);
    std::optional<int> readCodeName(const JsonValue &value, const CodeKind &kind);
    std::optional<InputEvent::Command> readCommand(const JsonValue &value);
    std::optional<InputEvent::Command> readCommand(const Members &members);
    /// The bus of an object; a mistake in it is told and counts as none.
    std::optional<InputEvent::Bus> readBus(const Members &members);

    /// The members of an object by name, of which each is known and none is missing.
    /// @param what "a key", for messages
    /// @return nothing for a value that is no object
    std::optional<Members> membersOf(const JsonValue &value, const QString &what,
                                     const QStringList &required, const QStringList &optional);
    /// The member if it is there; one of another type is told.
    std::optional<JsonValue> member(const Members &members, const char *key, JsonValue::Type type);
    QVector<JsonValue> elements(const Members &members, const char *key);
    QString text(const Members &members, const char *key);
    bool flag(const Members &members, const char *key);
    QString suggest(const QString &unknown, const QStringList &known);

    Findings *const m_findings;
    Profile m_profile;
    ProfilePlaces m_places;
    int m_suggestions = 0;
};

} // namespace Vorn::Workbench

#endif
