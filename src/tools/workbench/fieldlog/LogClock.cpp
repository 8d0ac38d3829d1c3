#include "LogClock.h"

#include <algorithm>

namespace Vorn::Workbench {

LogClock::Reading LogClock::at(const LogLine &line)
{
    if (m_wall && line.time)
        m_time += std::max<qint64>(0, *line.time - *m_wall);
    m_wall = line.time;
    return {m_time, {}};
}

} // namespace Vorn::Workbench
