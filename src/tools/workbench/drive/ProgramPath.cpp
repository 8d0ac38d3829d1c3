#include "ProgramPath.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <unistd.h>

namespace Vorn::Workbench {

namespace {

/// The folders of PATH. An empty one is the current folder.
QStringList folders()
{
    const QByteArray usual = "/bin:/usr/bin";
    const QString path =
        QFile::decodeName(qEnvironmentVariableIsSet("PATH") ? qgetenv("PATH") : usual);
    return path.split(QLatin1Char(':'));
}

} // namespace

QString programPath(const QString &program)
{
    if (program.isEmpty() || program.contains(QLatin1Char('/')))
        return program;
    const QStringList all = folders();
    for (const QString &folder : all) {
        QString path =
            (folder.isEmpty() ? QStringLiteral(".") : folder) + QLatin1Char('/') + program;
        if (QFileInfo(path).isFile() && access(QFile::encodeName(path).constData(), X_OK) == 0)
            return path;
    }
    return {};
}

} // namespace Vorn::Workbench
