#include "TimelineText.h"

#include "CommandNames.h"
#include "EventNames.h"

#include <QStringList>

namespace Vorn::Workbench {

namespace {

QString commandLabel(const TimelineEvent &event)
{
    return InputEvent(event.command, event.state, event.bus).cmdToString() + QLatin1Char(' ');
}

QString markText(const TimelineLane &lane, const TimelineMark &mark)
{
    switch (mark.kind) {
    case TimelineMark::Kind::Repeat:
        return valueName(lane.type, mark.value);
    case TimelineMark::Kind::Due:
        return QStringLiteral("long press due");
    case TimelineMark::Kind::Withdrawn:
        return QStringLiteral("withdrawn for a chord");
    case TimelineMark::Kind::Forgotten:
        return QStringLiteral("forgotten in a reset");
    case TimelineMark::Kind::Dropped:
        break;
    }
    return QStringLiteral("record dropped");
}

} // namespace

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

QString counted(qint64 count, const char *noun)
{
    const QString text = QString::number(count) + QLatin1Char(' ') + QLatin1String(noun);
    return count == 1 ? text : text + QLatin1Char('s');
}

QString joinedNames(int type, const QVector<int> &codes)
{
    QStringList names;
    for (const int code : codes)
        names += eventCodeName(type, code);
    return names.join(QStringLiteral(" + "));
}

QString eventLabel(const TimelineEvent &event)
{
    return commandLabel(event) + stateWord(event.state);
}

QString clickLabel(const TimelineEvent &event)
{
    return commandLabel(event) + QStringLiteral("click");
}

QString eventTitle(const TimelineLane &lane, const TimelineEvent &event)
{
    QString title = timelineTime(event.time) + QStringLiteral(": ")
        + InputEvent(event.command, event.state, event.bus).toString();
    if (!lane.codes.isEmpty())
        title += QLatin1Char(' ') + lane.label;
    if (event.latency)
        title += QStringLiteral(", %1 ms late")
                     .arg(static_cast<double>(*event.latency) / 1000, 0, 'f', 1);
    return title;
}

QString markTitle(const TimelineLane &lane, const TimelineMark &mark)
{
    return QStringLiteral("%1: %2 %3")
        .arg(timelineTime(mark.time), lane.label, markText(lane, mark));
}

} // namespace Vorn::Workbench
