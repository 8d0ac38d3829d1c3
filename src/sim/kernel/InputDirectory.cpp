#include "InputDirectory.h"

#include "NodePath.h"

#include <QDir>
#include <QFile>
#include <QString>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace Vorn::Sim {

InputDirectory::InputDirectory()
    : m_temporary(QDir::tempPath() + QStringLiteral("/vorn-sim-XXXXXX"))
    , m_folder(QFile::encodeName(m_temporary.path()))
{
    if (!m_temporary.isValid())
        qFatal("InputSubsystem: no temporary folder: %s", qPrintable(m_temporary.errorString()));
    if (::mkdir(realPath(deviceFolder), 0755) != 0)
        qFatal("InputSubsystem: cannot make a folder for /dev: %s", std::strerror(errno));
    create();
}

bool InputDirectory::exists() const
{
    return m_exists;
}

void InputDirectory::create()
{
    if (::mkdir(realPath(inputFolder), 0755) != 0)
        qFatal("InputSubsystem: cannot make a folder for /dev/input: %s", std::strerror(errno));
    m_exists = true;
}

void InputDirectory::remove()
{
    m_exists = false;
    if (::rmdir(realPath(inputFolder)) != 0)
        qFatal("InputSubsystem: cannot remove the folder for /dev/input: %s", std::strerror(errno));
}

void InputDirectory::addNode(const QByteArray &path, mode_t mode) const
{
    // A FIFO, because directory listings tell files from devices, and nothing else that is neither
    // can be made without privileges. What the umask takes from its mode nobody sees: who asks for
    // the status of a node or opens it is answered with the mode that it should have.
    if (::mkfifo(realPath(path), mode) != 0)
        qFatal("InputSubsystem: cannot make a node: %s", std::strerror(errno));
}

void InputDirectory::removeNode(const QByteArray &path) const
{
    ::unlink(realPath(path));
}

void InputDirectory::setMode(const QByteArray &path, mode_t mode) const
{
    if (::chmod(realPath(path), mode) != 0)
        qFatal("InputSubsystem: cannot change the mode of a node: %s", std::strerror(errno));
}

QByteArray InputDirectory::realPath(const char *path) const
{
    return m_folder + path;
}

void InputDirectory::translate(const char *path, char *buffer, std::size_t size) const
{
    const auto folderLength = static_cast<std::size_t>(m_folder.size());
    const std::size_t pathLength = std::strlen(path);
    if (folderLength + pathLength >= size) {
        std::memset(buffer, 'x', size - 1);
        buffer[size - 1] = '\0';
        return;
    }
    std::memcpy(buffer, m_folder.constData(), folderLength);
    std::memcpy(buffer + folderLength, path, pathLength + 1);
}

} // namespace Vorn::Sim
