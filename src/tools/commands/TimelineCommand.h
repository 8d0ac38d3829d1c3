#ifndef VORN_TOOLS_TIMELINECOMMAND_H
#define VORN_TOOLS_TIMELINECOMMAND_H

#include <QString>

namespace CLI {
class App;
}

namespace Vorn::Tools {

struct TimelineOptions
{
    QString file;
    QString output;
    QString title; ///< empty: the session's source
    QString pattern; ///< layout of a log; empty: guessed
    bool rotated = false; ///< with the older parts of a log
    bool force = false; ///< whatever exists is replaced
    double from = -1; ///< s of the session; negative: its beginning
    double to = -1; ///< s; negative: its end
    int session = 0; ///< of those in the file, from 1; 0: the only one
};

CLI::App *addTimeline(CLI::App *app, TimelineOptions *options);

/// Draws a recorded session. @return the exit status
int timeline(const TimelineOptions &options);

/// What is shown while a session is read: how far it has come, in per cent of the file, and where
/// in the session that is.
/// @param time µs
/// @param fileSize 0 if unknown
QString sessionProgress(qint64 time, qint64 bytesRead, qint64 fileSize);

} // namespace Vorn::Tools

#endif
