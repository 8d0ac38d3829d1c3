#include "ProfileReasons.h"

#include "BusNames.h"
#include "Suggestion.h"

#include <QStringList>

namespace Vorn::Workbench {

namespace {

/// "'desk-panel' (SPI)"
QString entryText(const DeviceProfile &device)
{
    QString text = QLatin1Char('\'') + device.name.value_or(QString()) + QLatin1Char('\'');
    if (device.bus)
        text += QStringLiteral(" (%1)").arg(busName(*device.bus));
    return text;
}

/// The entry that was probably meant for a device; null if none is close.
const DeviceProfile *closestEntry(const Profile &profile, const QString &name)
{
    QStringList names;
    for (const DeviceProfile &device : profile.devices)
        names += device.name.value_or(QString());
    const QString meant = names.contains(name) ? name : closest(name, names);
    for (const DeviceProfile &device : profile.devices) {
        if (!meant.isEmpty() && device.name == meant)
            return &device;
    }
    return nullptr;
}

} // namespace

QString noEntryReason(const Profile &profile, const QString &name, InputEvent::Bus bus)
{
    if (profile.devices.isEmpty())
        return QStringLiteral("there is no profile that maps it");
    QString reason = QStringLiteral("the device, '%1' (%2), fits no entry of the profile")
                         .arg(name, busName(bus));
    if (const DeviceProfile *meant = closestEntry(profile, name))
        reason += QStringLiteral("; did you mean %1?").arg(entryText(*meant));
    return reason;
}

QString otherEntryHint(const Profile &profile, const QString &name, InputEvent::Bus bus)
{
    const DeviceProfile *entry = profile.deviceFor(name, bus);
    const DeviceProfile *meant = closestEntry(profile, name);
    if (!entry || entry->name || !meant)
        return {};
    return QStringLiteral("; the device, '%1' (%2), fits only the entry for any device; did you "
                          "mean %3?")
        .arg(name, busName(bus), entryText(*meant));
}

} // namespace Vorn::Workbench
