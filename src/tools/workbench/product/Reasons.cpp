#include "Reasons.h"

#include "EventNames.h"
#include "SessionWords.h"

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

} // namespace

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
