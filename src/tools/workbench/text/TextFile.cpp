#include "TextFile.h"

#include "Diagnostic.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
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

} // namespace

std::optional<QByteArray> readFile(const QString &path, qint64 maxSize, Diagnostics *diagnostics)
{
    QFile file(path);
    const bool isStandardInput = path == QLatin1String("-");
    if (!isStandardInput && QFileInfo(path).isDir()) {
        diagnostics->append(cannotRead(path, QStringLiteral("it is a folder")));
        return std::nullopt;
    }
    const bool isOpen =
        isStandardInput ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (!isOpen) {
        diagnostics->append(cannotRead(path, file.errorString()));
        return std::nullopt;
    }
    QByteArray content;
    // In parts: a pipe has no size, and a device like /dev/zero has no end.
    while (content.size() <= maxSize) {
        const QByteArray part = file.read(std::min<qint64>(maxSize + 1 - content.size(), 1 << 20));
        if (part.isEmpty())
            break;
        content += part;
    }
    if (file.error() != QFileDevice::NoError) {
        diagnostics->append(cannotRead(path, file.errorString()));
        return std::nullopt;
    }
    if (content.size() > maxSize) {
        diagnostics->append(cannotRead(
            path, QStringLiteral("it is larger than %1 MiB").arg(maxSize / (qint64{1024} * 1024))));
        return std::nullopt;
    }
    return content;
}

QString writeFile(const QString &path, const QByteArray &content)
{
    if (path == QLatin1String("-")) {
        // Flushed here, since a full disk shows only then.
        const auto size = static_cast<std::size_t>(content.size());
        if (std::fwrite(content.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0)
            return QStringLiteral("the standard output cannot be written");
        return {};
    }
    // A device or a pipe is opened and written to; QSaveFile would replace it by a file.
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) {
        QFile device(path);
        const bool isWritten = device.open(QIODevice::WriteOnly | QIODevice::ExistingOnly)
            && device.write(content) == content.size() && device.flush();
        return isWritten ? QString() : cannotWrite(path, device.errorString());
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        return cannotWrite(path, file.errorString());
    return {};
}

} // namespace Vorn::Workbench
