#ifndef VORN_WORKBENCH_LOGRECORD_H
#define VORN_WORKBENCH_LOGRECORD_H

#include "LogOrigins.h"

#include <QtGlobal>

#include <memory>

namespace Vorn::Workbench {

/// A record as one of the readers of its device has logged it.
struct LogRecord
{
    LogOriginPtr origin;
    int type = 0;
    int code = 0;
    int value = 0;
    qint64 time = 0; ///< of its line
    /// Another reader of the device has logged it before.
    std::shared_ptr<LogRecord> twin;
    bool isPaired = false; ///< whether two readers have logged it
    bool isTaken = false; ///< a line of a handler or a detector is about it
    bool hasOutcome = false;
    int timesLeft = 0; ///< how many readers have left it to the other

    bool isSameAs(const LogRecord &other) const
    {
        return type == other.type && code == other.code && value == other.value;
    }
};

using LogRecordPtr = std::shared_ptr<LogRecord>;

} // namespace Vorn::Workbench

#endif
