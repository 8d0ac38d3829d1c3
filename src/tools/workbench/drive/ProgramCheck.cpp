#include "ProgramCheck.h"

#include "ElfFile.h"
#include "LoadedLibraries.h"
#include "ProgramPath.h"

#include <QFile>
#include <QRegularExpression>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>

namespace Vorn::Workbench {

namespace {

QString obstacleOfFile(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    if (stat(name.constData(), &status) != 0)
        return QStringLiteral("cannot be started: %1; build it, or name another program")
            .arg(qt_error_string(errno));
    if (S_ISDIR(status.st_mode))
        return QStringLiteral("is a folder; name the program in it");
    if (!S_ISREG(status.st_mode))
        return QStringLiteral("is not a file; name a program");
    if (access(name.constData(), X_OK) != 0)
        return QStringLiteral(
            "may not be executed; name a program, or give the right with chmod +x");
    if (access(name.constData(), R_OK) != 0)
        return QStringLiteral("cannot be read, to see whether it can be driven; "
                              "give the right with chmod +r");
    const QString gain = gainOfRights(path, getuid(), getgid());
    if (!gain.isEmpty())
        return QStringLiteral("%1, and nothing can be preloaded into such a program; "
                              "drive a plain copy of it, made with cp")
            .arg(gain);
    return {};
}

/// The program that runs a script; empty if it is none.
QString scriptRunner(QFile *file)
{
    // As much as the kernel reads of it.
    const QByteArray line = file->peek(256).split('\n').constFirst();
    return line.startsWith("#!")
        ? QString::fromLocal8Bit(line.mid(2).trimmed().replace('\t', ' ').split(' ').constFirst())
        : QString();
}

QString obstacleOfElf(const ElfFile &elf)
{
    switch (elf.kind) {
    case ElfFile::Kind::NotElf:
        return QStringLiteral("is not a program: it has no ELF header; name a program");
    case ElfFile::Kind::Damaged:
        return QStringLiteral("is damaged: %1; build or copy it again").arg(elf.error);
    case ElfFile::Kind::Foreign:
        return QStringLiteral("is for %1, and this vorn-input for %2; "
                              "use the vorn-input built for the same machine")
            .arg(elf.machine, ownMachine());
    case ElfFile::Kind::Other:
        return QStringLiteral("is an ELF file, but not a program; name a program");
    case ElfFile::Kind::Program:
        break;
    }
    return elf.loader.isEmpty()
        ? QStringLiteral("is linked statically or is a library, and nothing can be preloaded into "
                         "it; link the program dynamically")
        : QString();
}

QString obstacleOfLibraries(const LoadedLibraries &libraries)
{
    if (!libraries.error.isEmpty())
        return QStringLiteral("cannot be driven: %1").arg(libraries.error);
    static const QRegularExpression core(QStringLiteral("^libQt([0-9]*)Core.*\\.so"));
    bool hasInput = false;
    for (const QString &name : libraries.names) {
        const QRegularExpressionMatch match = core.match(name);
        if (match.hasMatch() && match.captured(1) != QLatin1String(VORN_INPUT_QT))
            return QStringLiteral("uses another Qt than Qt " VORN_INPUT_QT
                                  " (%1); build it with Qt " VORN_INPUT_QT)
                .arg(name);
        hasInput |= name.startsWith(QLatin1String(VORN_INPUT_LIBRARY));
    }
    return hasInput
        ? QString()
        : QStringLiteral("does not link " VORN_INPUT_LIBRARY ", neither itself nor through "
                         "its libraries; name the program that reads the input devices");
}

QString obstacleOf(const QString &path)
{
    QString obstacle = obstacleOfFile(path);
    if (!obstacle.isEmpty())
        return obstacle;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot be read: %1").arg(file.errorString());
    const QString runner = scriptRunner(&file);
    if (!runner.isEmpty())
        return QStringLiteral("is a script, run by %1; name the program that it starts")
            .arg(runner);
    const ElfFile elf = readElfFile(&file);
    obstacle = obstacleOfElf(elf);
    return obstacle.isEmpty() ? obstacleOfLibraries(loadedLibraries(path, elf.loader)) : obstacle;
}

} // namespace

QString obstacleToDrive(const QString &program)
{
    if (program.isEmpty())
        return QStringLiteral("no program is given; name it after --");
    const QString path = programPath(program);
    if (path.isEmpty())
        return QStringLiteral("%1 is in no folder of PATH; name it with its folder, as in ./%1")
            .arg(program);
    const QString obstacle = obstacleOf(path);
    return obstacle.isEmpty() ? QString() : path + QLatin1Char(' ') + obstacle;
}

QString gainOfRights(const QString &path, uid_t user, gid_t group)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    if (stat(name.constData(), &status) != 0)
        return {};
    if ((status.st_mode & S_ISUID) && status.st_uid != user)
        return QStringLiteral("is set-user-id");
    // Without the right to execute, the bit once meant mandatory locks.
    if ((status.st_mode & S_ISGID) && (status.st_mode & S_IXGRP) && status.st_gid != group)
        return QStringLiteral("is set-group-id");
    if (user != 0 && getxattr(name.constData(), "security.capability", nullptr, 0) > 0)
        return QStringLiteral("has file capabilities");
    return {};
}

} // namespace Vorn::Workbench
