#ifndef VORN_WORKBENCH_SESSIONTIME_H
#define VORN_WORKBENCH_SESSIONTIME_H

#include <QString>

namespace Vorn::Workbench {

/// A time of a session, given in µs, in seconds: "12.402".
QString sessionSeconds(qint64 time);

} // namespace Vorn::Workbench

#endif
