#include "SimulatedBench.h"

#include <QFileInfo>

namespace Vorn::Workbench {

SimulatedBench::SimulatedBench(const LoadedScenario &loaded, const SessionLog::Sink &sink)
    : m_clock(loaded.scenario.start)
    , m_log(sink)
{
    SessionStart start;
    start.source = loaded.source;
    start.profile = QFileInfo(loaded.profileFile).fileName();
    start.wallClock = m_log.wallClockAtStart();
    m_log.add(start);
    m_product = std::make_unique<Product>(loaded.profile, &m_log);
}

void SimulatedBench::runUntil(qint64 end)
{
    m_clock.advance(std::chrono::milliseconds(end - now()));
}

void SimulatedBench::runUntil(qint64 end, const Condition &condition)
{
    m_clock.waitUntil(condition, std::chrono::milliseconds(end - now()));
}

void SimulatedBench::stepWallClock(qint64 delta)
{
    m_clock.stepWallClock(std::chrono::milliseconds(delta));
}

} // namespace Vorn::Workbench
