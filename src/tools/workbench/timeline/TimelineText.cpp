#include "TimelineText.h"

#include "EventNames.h"

#include <QStringList>

namespace Vorn::Workbench {

QString timelineTime(qint64 time)
{
    return QString::number(static_cast<double>(time) / 1'000'000, 'f', 3) + QStringLiteral(" s");
}

QString timelineDuration(qint64 duration)
{
    // The label has to fit into a break: no more than two digits before the unit, if possible.
    const double seconds = static_cast<double>(duration) / 1'000'000;
    if (seconds < 100)
        return QStringLiteral("%1 s").arg(seconds, 0, 'f', 1);
    if (seconds < 6000)
        return QStringLiteral("%1 min").arg(seconds / 60, 0, 'f', 0);
    if (seconds < 360'000)
        return QStringLiteral("%1 h").arg(seconds / 3600, 0, 'f', 0);
    return QStringLiteral("%1 d").arg(seconds / 86'400, 0, 'f', 0);
}

QString counted(int count, const char *noun)
{
    const QString text = QStringLiteral("%1 %2").arg(count).arg(QLatin1String(noun));
    return count == 1 ? text : text + QLatin1Char('s');
}

QString joinedNames(int type, const QVector<int> &codes)
{
    QStringList names;
    for (const int code : codes)
        names += eventCodeName(type, code);
    return names.join(QStringLiteral(" + "));
}

} // namespace Vorn::Workbench
