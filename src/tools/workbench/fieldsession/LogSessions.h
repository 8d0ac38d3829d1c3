#ifndef VORN_WORKBENCH_LOGSESSIONS_H
#define VORN_WORKBENCH_LOGSESSIONS_H

#include "LibraryMessage.h"
#include "LogClock.h"
#include "LogLine.h"
#include "LogSession.h"
#include "Session.h"

#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QTemporaryFile;

namespace Vorn::Workbench {

/// Makes sessions of a product's log, one for each start of each process, one after the other.
///
/// ```
/// LogSessions sessions(path, [](const SessionEntry &entry) { use(entry); });
/// while (const std::optional<LogLine> line = reader.next())
///     sessions.add(*line);
/// sessions.finish();
/// ```
///
/// The first process is passed on as it is read. What others log in between is kept on disk, so
/// memory does not depend on the length of the log.
class LogSessions
{
public:
    using Sink = std::function<void(const SessionEntry &)>;

    /// @param source name of the log
    LogSessions(const QString &source, Sink sink);
    ~LogSessions();

    /// @param layout called at the start of a session: how its lines are read, for people
    void setLayout(const std::function<QString()> &layout) { m_layout = layout; }
    void add(const LogLine &line);
    void finish();

    /// Lines of the library that were understood.
    qint64 understood() const { return m_understood; }

private:
    struct Process
    {
        QString name;
        LogClock clock;
        std::unique_ptr<LogSession> session;
        std::unique_ptr<QTemporaryFile> kept; ///< null: entries are passed on
        qint64 time = 0; ///< of the last line, µs of the session
        qint64 sessionBegin = 0; ///< by the process's clock
        qint64 unknown = 0;
    };

    Process *processOf(const QString &name);
    void begin(Process *process, const LogLine &line, qint64 time);
    void addUnknown(Process *process, const LogLine &line);
    void end(Process *process);
    void passOnKept(QTemporaryFile *kept) const;

    const QString m_source;
    const Sink m_sink;
    std::function<QString()> m_layout;
    std::vector<std::unique_ptr<Process>> m_processes;
    qint64 m_understood = 0;
};

} // namespace Vorn::Workbench

#endif
