#ifndef VORN_WORKBENCH_TIMELINE_H
#define VORN_WORKBENCH_TIMELINE_H

#include "Session.h"
#include "TimelineModel.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <memory>
#include <optional>

namespace Vorn::Workbench {

class TimelineCollector;

struct TimelineOptions
{
    QString title; ///< empty: the session's source
    std::optional<qint64> from; ///< µs of the session; otherwise its beginning
    std::optional<qint64> to; ///< µs; otherwise its end
};

/// A session as a picture (SVG). Each key has a lane that shows when it was down, what the
/// detectors did with it, and which events were published. The picture is readable on a light and
/// on a dark background, and the same session gives the same bytes on every machine.
///
/// Entries are not kept: however long the session is, a Timeline has the size of its picture. Where
/// that is full, it ends, and says what it lacks.
class Timeline
{
public:
    explicit Timeline(const TimelineOptions &options = {});
    ~Timeline();
    Timeline(const Timeline &) = delete;
    Timeline &operator=(const Timeline &) = delete;

    void add(const SessionEntry &entry);
    /// The session went on until @p end (µs), even if nothing happened.
    void extendTo(qint64 end);

    /// From the first entry to the end.
    TimelineSpan session() const;
    bool isEmpty() const;

    /// The picture. To be called once.
    /// @param part which session of a file this is, "session 2 of 3", to be shown in the picture
    QByteArray svg(const QString &part = QString());

private:
    const TimelineOptions m_options;
    const std::unique_ptr<TimelineCollector> m_collector;
};

/// The same for entries at hand.
QByteArray timelineSvg(const QVector<SessionEntry> &entries, const TimelineOptions &options);

/// What every picture has near its start.
QByteArray timelineSignature();

} // namespace Vorn::Workbench

#endif
