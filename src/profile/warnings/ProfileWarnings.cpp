#include "ProfileWarnings.h"

#include "ChordWarnings.h"
#include "DeviceRange.h"
#include "Diagnostic.h"
#include "HandlerWarnings.h"
#include "Quoting.h"
#include "RuleWarnings.h"

#include <QHash>
#include <QSet>

namespace Vorn {

namespace {

class ProfileWarnings
{
public:
    ProfileWarnings(const Profile &profile, const ProfilePlaces &places, Findings *findings)
        : m_profile(profile)
        , m_places(places)
        , m_findings(findings)
    { }

    void findAll();

private:
    void checkDevice(const DeviceProfile &device, const DevicePlaces &places);
    void checkIdentifiers(const DeviceProfile &device, const DevicePlaces &places);
    QSet<int> mappedKeys(const DeviceProfile &device) const;
    void warn(const TextPosition &position, const QString &message)
    {
        m_findings->warning(position, message);
    }

    const Profile &m_profile;
    const ProfilePlaces &m_places;
    Findings *const m_findings;
    TakenRanges m_taken;
};

void ProfileWarnings::findAll()
{
    for (int i = 0; i < m_profile.devices.size(); ++i)
        checkDevice(m_profile.devices.at(i), m_places.devices.at(i));
    // An error may hide what seems to be missing.
    if (m_findings->hasErrors())
        return;
    if (m_profile.devices.isEmpty()) {
        warn(m_places.root->positionOf("device"),
             QStringLiteral("there are no devices, so nothing is ever reported"));
        return;
    }
    findRuleWarnings(m_profile, m_places, m_findings);
}

QSet<int> ProfileWarnings::mappedKeys(const DeviceProfile &device) const
{
    QSet<int> codes;
    for (const HandlerProfile &handler : device.handlers) {
        for (const KeyMapping &key : handler.keys)
            codes.insert(key.code);
    }
    return codes;
}

void ProfileWarnings::checkDevice(const DeviceProfile &device, const DevicePlaces &places)
{
    const DeviceRange range = rangeOf(device.name, device.bus);
    // With a mistake in its name or bus, nobody knows which devices the entry matches.
    const auto isWrong = [&places](const char *member, bool isRead) {
        return !isRead && places.device->member(QLatin1String(member));
    };
    const bool isKnown =
        !isWrong("name", device.name.has_value()) && !isWrong("bus", device.bus.has_value());
    if (device.name && device.name->isEmpty()) {
        warn(places.device->positionOf("name"),
             QStringLiteral("this matches only devices without a name; omit 'name' to match all"));
    }
    if (range.isEmpty()) {
        warn(places.device->positionOf("bus"),
             QStringLiteral("no device matches: only the device named 'hostlink' is on the bus "
                            "Hostlink"));
    } else if (const int line = isKnown ? m_taken.takenBy(range) : 0) {
        warn(places.device->position,
             QStringLiteral("this entry is never used: the one in line %1 matches all its devices")
                 .arg(line));
    }
    const TomlValue *handlers = places.device->member(QStringLiteral("handler"));
    if (!handlers || (handlers->isList() && handlers->children.empty())) {
        warn(places.device->positionOf("handler"),
             QStringLiteral("there are no handlers, so nothing is reported"));
    }
    const QSet<int> mapped = mappedKeys(device);
    for (int i = 0; i < device.handlers.size(); ++i) {
        findHandlerWarnings(device.handlers.at(i), places.handlers.at(i), range, m_taken,
                            m_findings);
        findChordWarnings(device.handlers.at(i), places.handlers.at(i), mapped, m_findings);
    }
    checkIdentifiers(device, places);
    if (isKnown && !range.isEmpty())
        m_taken.take(range, places.device->position.line);
}

void ProfileWarnings::checkIdentifiers(const DeviceProfile &device, const DevicePlaces &places)
{
    QHash<QString, int> keyLines;
    QHash<QString, int> switchLines;
    for (int i = 0; i < device.handlers.size(); ++i) {
        const HandlerProfile &handler = device.handlers.at(i);
        const bool hasKeys = !handler.keys.isEmpty() || !handler.chords.isEmpty();
        const bool hasSwitches = !handler.switches.isEmpty();
        QSet<QString> own;
        for (int j = 0; j < handler.identifiers.size(); ++j) {
            const QString &identifier = handler.identifiers.at(j);
            const TextPosition &place = places.handlers.at(i).identifiers.at(j);
            if (own.contains(identifier)) {
                warn(place, QStringLiteral("%1 is listed twice").arg(quoted(identifier)));
                continue;
            }
            own.insert(identifier);
            const int keyLine = hasKeys ? keyLines.value(identifier) : 0;
            const int switchLine = hasSwitches ? switchLines.value(identifier) : 0;
            const auto warnOf = [&](const char *group, int line) {
                if (line > 0)
                    warn(place,
                         QStringLiteral("the %1 under %2 in line %3 are never used: those of this "
                                        "handler replace them")
                             .arg(QLatin1String(group), quoted(identifier), QString::number(line)));
            };
            warnOf("keys", keyLine);
            warnOf("switches", switchLine);
            if (hasKeys)
                keyLines.insert(identifier, place.line);
            if (hasSwitches)
                switchLines.insert(identifier, place.line);
        }
    }
}

} // namespace

void findProfileWarnings(const Profile &profile, const ProfilePlaces &places, Findings *findings)
{
    ProfileWarnings(profile, places, findings).findAll();
}

} // namespace Vorn
