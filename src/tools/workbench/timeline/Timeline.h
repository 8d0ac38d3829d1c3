#ifndef VORN_WORKBENCH_TIMELINE_H
#define VORN_WORKBENCH_TIMELINE_H

#include "Session.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace Vorn::Workbench {

struct TimelineOptions
{
    QString title; ///< empty: the session's source
    qint64 from = 0; ///< µs of the session
    qint64 to = -1; ///< µs; -1: to its end
};

/// Draws a session as a picture (SVG) on one time axis. Each key has a lane that shows when it was
/// down, what the detectors did with it, and which events were published. The picture is readable
/// on a light and on a dark background, and the same session gives the same bytes on every machine.
QByteArray timelineSvg(const QVector<SessionEntry> &entries, const TimelineOptions &options);

/// What every picture has near its start.
QByteArray timelineSignature();

} // namespace Vorn::Workbench

#endif
