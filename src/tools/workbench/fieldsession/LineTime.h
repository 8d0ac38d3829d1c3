#ifndef VORN_WORKBENCH_LINETIME_H
#define VORN_WORKBENCH_LINETIME_H

#include <QtGlobal>

namespace Vorn::Workbench {

/// When the line at hand was logged.
struct LineTime
{
    /// µs. What follows from a record is logged at once.
    static constexpr qint64 atOnce = 1'000'000;

    qint64 now = 0; ///< µs of the session
    qint64 before = 0; ///< that of the line before
    qint64 wallClock = 0; ///< µs since the epoch, or whatever the log counts from
};

} // namespace Vorn::Workbench

#endif
