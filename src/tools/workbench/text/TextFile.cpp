#include "TextFile.h"

#include "Diagnostic.h"
#include "InputFile.h"
#include "WriteAll.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <stdio_ext.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace Vorn::Workbench {

namespace {

Diagnostic cannotRead(const QString &path, const QString &reason)
{
    return {Diagnostic::Severity::Error, path, 0, 0, QStringLiteral("cannot be read: ") + reason};
}

QString cannotWrite(const QString &path, const QString &reason)
{
    return QStringLiteral("%1 cannot be written: %2").arg(path, reason);
}

QString writeStandardOutput(const QByteArray &content)
{
    errno = 0;
    const auto size = static_cast<std::size_t>(content.size());
    // Flushed here, since a full disk shows only then.
    if (std::fwrite(content.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return {};
    QString error = cannotWrite(QStringLiteral("the standard output"), qt_error_string(errno));
    // Told once: whoever flushes the stream later has nothing to add.
    __fpurge(stdout);
    std::clearerr(stdout);
    return error;
}

} // namespace

std::optional<QByteArray> readFile(const QString &path, qint64 maxSize, Diagnostics *diagnostics,
                                   Pipes pipes)
{
    const auto fail = [&](const QString &reason) {
        diagnostics->append(cannotRead(path, reason));
        return std::nullopt;
    };
    InputFile input;
    const QString error = input.openForReading(path, pipes);
    if (!error.isEmpty())
        return fail(error);
    QByteArray content;
    // In parts: a pipe has no size, and may have no end.
    while (content.size() <= maxSize) {
        QByteArray part(static_cast<int>(std::min<qint64>(maxSize + 1 - content.size(), 1 << 20)),
                        Qt::Uninitialized);
        const auto size = static_cast<int>(input.read(part.data(), part.size()));
        if (size < 0)
            return fail(input.errorString());
        if (size == 0)
            break;
        content.append(part.constData(), size);
    }
    if (content.size() > maxSize)
        return fail(
            QStringLiteral("it is larger than %1 MiB").arg(maxSize / (qint64{1024} * 1024)));
    return content;
}

QString writeFile(const QString &path, const QByteArray &content)
{
    if (path == QLatin1String("-"))
        return writeStandardOutput(content);
    // A device or a pipe is opened and written to; QSaveFile would replace it by a file.
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) {
        QFile device(path);
        if (!device.open(QIODevice::WriteOnly | QIODevice::ExistingOnly))
            return cannotWrite(path, device.errorString());
        const int error = writeAll(device.handle(), content);
        return error == 0 ? QString() : cannotWrite(path, qt_error_string(error));
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return cannotWrite(path, file.errorString());
    // Not through its buffer: commit() does not ask whether what that held has arrived, and would
    // put a file of nothing in the old one's place.
    int error = writeAll(file.handle(), content);
    // Some disks find out that they are full only now; some file systems cannot be asked.
    if (error == 0 && fsync(file.handle()) != 0 && errno != EINVAL)
        error = errno;
    if (error != 0)
        return cannotWrite(path, qt_error_string(error));
    return file.commit() ? QString() : cannotWrite(path, file.errorString());
}

} // namespace Vorn::Workbench
