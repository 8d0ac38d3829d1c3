#include "Reasons.h"

#include "BusNames.h"
#include "EventNames.h"
#include "SessionTime.h"
#include "Suggestion.h"

namespace Vorn::Workbench {

namespace {

QString listed(const QStringList &identifiers)
{
    QStringList quoted;
    for (const QString &identifier : identifiers)
        quoted += QLatin1Char('\'') + identifier + QLatin1Char('\'');
    return quoted.join(QStringLiteral(", "));
}

QString under(const QString &identifier)
{
    return QStringLiteral("under identifier ") + listed({identifier});
}

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

QString timeText(qint64 time)
{
    return sessionSeconds(time) + QStringLiteral(" s");
}

QString joinedKeys(const QVector<int> &codes)
{
    QStringList names;
    for (const int code : codes)
        names += keyName(code);
    return names.join(QStringLiteral(" + "));
}

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

QString noHandlerReason(const QString &kind, const QString &identifier, const QStringList &others)
{
    const QString reason =
        QStringLiteral("the listener has no receiver: no %1 of the device are mapped ").arg(kind)
        + under(identifier);
    return others.isEmpty() ? reason : reason + QStringLiteral(", but under ") + listed(others);
}

QString unmappedReason(const QString &identifier, const QStringList &others)
{
    const QString reason = QStringLiteral("not mapped ") + under(identifier);
    return others.isEmpty() ? reason : reason + QStringLiteral(", but under ") + listed(others);
}

QString lostReleaseText(const QString &device, int code, qint64 since, bool isChord)
{
    const QString consequence = isChord
        ? QStringLiteral("other keys of the device are dropped")
        : QStringLiteral("the next key of the device makes a pair with it");
    return QStringLiteral("%1: %2 is down for the library since %3, but up on the device: its "
                          "release was lost, and %4 until it is pressed and released again")
        .arg(device, keyName(code), timeText(since), consequence);
}

} // namespace Vorn::Workbench
