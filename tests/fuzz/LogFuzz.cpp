#include "LogClock.h"
#include "LogReader.h"
#include "LogSessions.h"
#include "SessionReader.h"
#include "SessionWriter.h"

#include <QMap>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

using namespace Vorn;
using namespace Vorn::Workbench;

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// A file without a place on a disk.
class MemoryFile
{
public:
    MemoryFile(const char *data, std::size_t size)
        : m_fd(memfd_create("log", MFD_CLOEXEC))
    {
        require(write(m_fd, data, size) == static_cast<ssize_t>(size));
    }
    ~MemoryFile() { close(m_fd); }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_fd); }

private:
    const int m_fd;
};

} // namespace

/// Behind "--pattern " the first line is one; the rest is the log. Each of its lines must be
/// accounted for, in order, session time never goes back, and what is made of them is a session
/// that can be read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray log(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const QByteArray option("--pattern ");
    LogReaderOptions options;
    if (log.startsWith(option)) {
        const auto end = log.indexOf('\n') < 0 ? log.size() : log.indexOf('\n');
        options.pattern = QString::fromUtf8(log.mid(option.size(), end - option.size()));
        log.remove(0, end + 1);
    }

    const MemoryFile file(log.constData(), static_cast<std::size_t>(log.size()));
    LogReader reader({file.path()}, options);
    QMap<QString, LogClock> clocks;
    QMap<QString, qint64> times;
    QByteArray session;
    LogSessions sessions(QStringLiteral("log"),
                         [&session](const SessionEntry &entry) { session += toJsonLine(entry); });
    qint64 lines = 0;
    qint64 lastNumber = 0;
    while (const std::optional<LogLine> line = reader.next()) {
        ++lines;
        require(line->number > lastNumber);
        lastNumber = line->number;
        const qint64 time = clocks[line->process].at(*line).time;
        require(time >= times.value(line->process));
        times[line->process] = time;
        sessions.add(*line);
    }
    sessions.finish();
    require(session.isEmpty()
            || parseSession(session, QStringLiteral("session")).diagnostics.isEmpty());
    const LogCounts counts = reader.counts();
    require(counts.lines == lines + counts.before + counts.notUnderstood);
    for (const Diagnostic &diagnostic : reader.diagnostics())
        require(!diagnostic.message.isEmpty());
    return 0;
}
