#include "LoadedLibraries.h"

#include <QFileInfo>
#include <QProcess>

namespace Vorn::Workbench {

namespace {

// Nothing waits for a person here. It is for a file that is no loader.
constexpr int patienceMs = 60'000;

/// What the loader says, without the names that it puts before it.
QString complaint(const QByteArray &text)
{
    const QString line = QString::fromLocal8Bit(text).trimmed().section(QLatin1Char('\n'), 0, 0);
    const QString marker = QStringLiteral("error while loading shared libraries: ");
    const auto at = line.indexOf(marker);
    return at < 0 ? line : line.mid(at + marker.size());
}

/// "	libQt5Core.so.5 => /usr/lib/libQt5Core.so.5 (0x0000)", or a path without an arrow.
QString nameIn(const QByteArray &line)
{
    const QString first = QString::fromLocal8Bit(line).trimmed().section(QLatin1Char(' '), 0, 0);
    return QFileInfo(first).fileName();
}

} // namespace

LoadedLibraries loadedLibraries(const QString &program, const QString &loader)
{
    LoadedLibraries result;
    if (!QFileInfo(loader).isFile()) {
        result.error =
            QStringLiteral("its loader %1 does not exist; install the libraries of its system")
                .arg(loader);
        return result;
    }
    // $ORIGIN is the folder of the file itself, not that of a link to it.
    const QString file = QFileInfo(program).canonicalFilePath();
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(loader, {QStringLiteral("--list"), file});
    if (!process.waitForFinished(patienceMs)) {
        result.error = process.error() == QProcess::Timedout
            ? QStringLiteral("its loader %1 does not answer").arg(loader)
            : QStringLiteral("its loader %1 cannot be run: %2").arg(loader, process.errorString());
        process.kill();
        process.waitForFinished();
        return result;
    }
    const QString reason = complaint(process.readAllStandardError());
    if (process.exitStatus() == QProcess::CrashExit) {
        result.error = QStringLiteral("its loader crashes over it; the file is damaged");
    } else if (process.exitCode() != 0) {
        result.error =
            QStringLiteral("it cannot be loaded (%1); see that ldd finds all its libraries")
                .arg(reason.isEmpty() ? QStringLiteral("without a reason") : reason);
    } else {
        const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
        for (const QByteArray &line : lines) {
            const QString name = nameIn(line);
            if (!name.isEmpty())
                result.names += name;
        }
    }
    return result;
}

} // namespace Vorn::Workbench
