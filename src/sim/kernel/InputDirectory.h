#ifndef VORN_SIM_INPUTDIRECTORY_H
#define VORN_SIM_INPUTDIRECTORY_H

#include <QByteArray>
#include <QTemporaryDir>

#include <sys/types.h>

#include <cstddef>

namespace Vorn::Sim {

/// The temporary folder whose subfolder dev stands in for /dev, and the nodes in its input folder.
///
/// Real files, so that inotify reports every change; who opens a node is served elsewhere. What
/// cannot be done is fatal: no test could go on.
class InputDirectory
{
public:
    /// /dev and an empty /dev/input.
    InputDirectory();

    /// Whether /dev/input exists.
    bool exists() const;

    /// Makes /dev/input, which does not exist.
    void create();

    /// Removes /dev/input, which is empty.
    void remove();

    void addNode(const QByteArray &path, mode_t mode) const;
    void removeNode(const QByteArray &path) const;
    void setMode(const QByteArray &path, mode_t mode) const;

    /// The real path for @p path, e.g. "/dev/input".
    QByteArray realPath(const char *path) const;

    /// The same without an allocation. Writes a path that is too long for the kernel if the real
    /// one does not fit.
    void translate(const char *path, char *buffer, std::size_t size) const;

private:
    const QTemporaryDir m_temporary;
    const QByteArray m_folder;
    bool m_exists = false;
};

} // namespace Vorn::Sim

#endif
