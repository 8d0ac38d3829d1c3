#include "LogCoverage.h"

namespace Vorn::Workbench {

void LogCoverage::add(const LibraryLine &line)
{
    switch (line.logger) {
    case LibraryLogger::Input:
        m_hasBus = true;
        break;
    case LibraryLogger::BasicInputHandler:
        m_hasHandlerTraces = m_hasHandlerTraces || line.level == LogLevel::Trace;
        m_hasReports = m_hasReports || std::holds_alternative<Said::EventReported>(line.what);
        break;
    case LibraryLogger::LinuxInputListener:
        m_hasDescriptors = m_hasDescriptors || std::holds_alternative<Said::ReadBegun>(line.what);
        m_hasRecords = m_hasRecords || std::holds_alternative<Said::RecordLogged>(line.what);
        m_hasListenerLines = m_hasListenerLines || line.level <= LogLevel::Debug;
        break;
    case LibraryLogger::KeyProcessing:
        m_hasDetectors = true;
        break;
    }
}

bool LogCoverage::isComplete() const
{
    return m_hasRecords && m_hasDescriptors && m_hasDetectors && m_hasReports && m_hasBus;
}

QStringList LogCoverage::gaps(int devices) const
{
    QStringList gaps;
    // A log of a product that nobody has touched has no records either.
    if (!m_hasListenerLines)
        gaps += QStringLiteral("no records: the log has no line of logger LinuxInputListener at "
                               "DEBUG");
    if (m_hasRecords && !m_hasDescriptors && devices != 1)
        gaps += QStringLiteral("records do not say which device they are of: the log has no line "
                               "of logger LinuxInputListener at TRACE");
    if (m_hasRecords && !m_hasDetectors)
        gaps += QStringLiteral("no steps of the detectors: the log has no line of logger "
                               "KeyProcessing at DEBUG");
    if (!hasEvents() && (m_hasRecords || !m_hasListenerLines))
        gaps += QStringLiteral("no events: the log has no line of logger Input at DEBUG");
    if (m_hasBus && !m_hasHandlerTraces)
        gaps += QStringLiteral("events do not say who reported them, and selections are missing: "
                               "the log has no line of logger BasicInputHandler at TRACE");
    if (devices == 0)
        gaps += QStringLiteral("no devices: the log does not show that any was opened");
    return gaps;
}

QStringList LogCoverage::since(const LogCoverage &before) const
{
    QStringList news;
    const auto add = [&news](bool was, bool is, const char *what) {
        if (is && !was)
            news +=
                QStringLiteral("from here on the log has lines of logger ") + QLatin1String(what);
    };
    add(before.m_hasListenerLines, m_hasListenerLines, "LinuxInputListener at DEBUG");
    add(before.m_hasDescriptors || !before.m_hasRecords, m_hasDescriptors,
        "LinuxInputListener at TRACE");
    add(before.m_hasDetectors || !before.m_hasRecords, m_hasDetectors, "KeyProcessing at DEBUG");
    add(before.m_hasBus || before.m_hasReports, m_hasBus, "Input at DEBUG");
    add(before.m_hasHandlerTraces || !before.m_hasBus, m_hasHandlerTraces,
        "BasicInputHandler at TRACE");
    return news;
}

} // namespace Vorn::Workbench
