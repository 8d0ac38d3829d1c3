#include "FieldLog.h"

#include "LibrarySigns.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

namespace Vorn::Workbench {

namespace {

constexpr std::size_t headSize = std::size_t{64} * 1024;

/// The beginning of the standard input, which stays there for whoever reads it.
QByteArray headOfInput()
{
    std::vector<char> head(headSize);
    const off_t at = ::lseek(STDIN_FILENO, 0, SEEK_CUR);
    ssize_t size = -1;
    if (at >= 0) {
        size = ::pread(STDIN_FILENO, head.data(), head.size(), at);
    } else {
        int copy[2];
        if (::pipe2(copy, O_CLOEXEC) != 0)
            return {};
        // Waits for the first bytes, as reading would.
        size = ::tee(STDIN_FILENO, copy[1], headSize, 0);
        if (size > 0)
            size = ::read(copy[0], head.data(), static_cast<std::size_t>(size));
        ::close(copy[0]);
        ::close(copy[1]);
    }
    return {head.data(), static_cast<int>(std::max<ssize_t>(size, 0))};
}

QByteArray headOf(const QString &path)
{
    if (path == QLatin1String("-"))
        return headOfInput();
    // To look into a pipe is to take from it.
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) ? file.read(qint64{headSize})
                                                                      : QByteArray();
}

} // namespace

bool beginsLikeLog(const QByteArray &text)
{
    if (text.startsWith("\x1f\x8b"))
        return true;
    const QList<QByteArray> lines = text.split('\n');
    // A session's lines are objects, too.
    if (text.trimmed().startsWith('{'))
        return lines.first().contains("\"MESSAGE\"")
            || lines.first().contains("\"__REALTIME_TIMESTAMP\"");
    return std::any_of(lines.begin(), lines.end(), [](const QByteArray &line) {
        return libraryMessageIn({line.constData(), static_cast<std::size_t>(line.size())})
            .has_value();
    });
}

bool isLog(const QString &path)
{
    static const QRegularExpression logName(QStringLiteral(R"(\.log(\.\d+)?(\.gz)?$)"));
    static const QRegularExpression otherName(QStringLiteral(R"(\.(scenario|evemu|umockdev)$)"));
    if (path.contains(otherName))
        return false;
    return path.contains(logName) || beginsLikeLog(headOf(path));
}

Diagnostics readLog(const QString &path, const LogReaderOptions &options,
                    const LogSessions::Sink &sink, const std::function<bool()> &isEnough)
{
    LogReader reader({path}, options);
    LogSessions sessions(path, sink);
    sessions.setLayout([&reader] { return reader.layoutText(); });
    bool isCut = false;
    while (const std::optional<LogLine> line = reader.next()) {
        isCut = isEnough();
        if (isCut)
            break;
        sessions.add(*line);
    }
    sessions.finish();
    Diagnostics diagnostics = reader.diagnostics();
    if (!isCut && sessions.understood() == 0 && !hasErrors(diagnostics))
        diagnostics += Diagnostic{
            Diagnostic::Severity::Error, path, 0, 0,
            QStringLiteral("contains no line of the library; if it should, give the layout with "
                           "--pattern")};
    return diagnostics;
}

} // namespace Vorn::Workbench
