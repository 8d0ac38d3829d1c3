#include "OutputFile.h"

#include "InputFile.h"
#include "TextFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <unistd.h>

#include <cerrno>

namespace Vorn::Workbench {

namespace {

constexpr qint64 signatureRange = 4096;

bool isRecognised(const QString &path, const QByteArray &signature)
{
    QFile file(path);
    return !signature.isEmpty() && file.open(QIODevice::ReadOnly)
        && file.read(signatureRange).contains(signature);
}

} // namespace

QString obstacleTo(const QString &path)
{
    if (path == QLatin1String("-"))
        return {};
    const QFileInfo info(path);
    if (info.isDir())
        return QStringLiteral("%1 is a folder; name a file").arg(path);
    if (info.exists() && !info.isFile()) {
        const bool isWritable = access(QFile::encodeName(path).constData(), W_OK) == 0;
        return isWritable
            ? QString()
            : QStringLiteral("%1 cannot be written: %2").arg(path, qt_error_string(errno));
    }
    // A temporary file beside it, as when it is written; it is gone with this object.
    QSaveFile attempt(path);
    if (attempt.open(QIODevice::WriteOnly))
        return {};
    return QStringLiteral("%1 cannot be written: %2; choose another file")
        .arg(path, attempt.errorString());
}

QString obstacleTo(const QString &path, const Overwrite &overwrite)
{
    if (path == QLatin1String("-"))
        return {};
    if (wasRead(path)) {
        return QStringLiteral("%1 is one of the files that were read, and would be lost; choose "
                              "another file")
            .arg(path);
    }
    const QFileInfo info(path);
    if (info.isFile() && info.size() > 0 && !overwrite.isForced
        && !isRecognised(path, overwrite.signature))
    {
        return QStringLiteral("%1 exists, and vorn-input did not write it; choose another file, or "
                              "replace it with --force")
            .arg(path);
    }
    return obstacleTo(path);
}

QString writeFile(const QString &path, const QByteArray &content, const Overwrite &overwrite)
{
    const QString obstacle = obstacleTo(path, overwrite);
    return obstacle.isEmpty() ? writeFile(path, content) : obstacle;
}

} // namespace Vorn::Workbench
