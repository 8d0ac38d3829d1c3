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
    bool force = false; ///< whatever exists is replaced
    double from = 0; ///< s of the session
    double to = 0; ///< s; 0: its end
};

CLI::App *addTimeline(CLI::App *app, TimelineOptions *options);

/// Draws a recorded session. @return the exit status
int timeline(const TimelineOptions &options);

} // namespace Vorn::Tools

#endif
