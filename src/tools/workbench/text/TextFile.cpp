#include "TextFile.h"

#include "Diagnostic.h"
#include "WriteAll.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <poll.h>
#include <stdio_ext.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <set>

namespace Vorn::Workbench {

namespace {

Diagnostic cannotRead(const QString &path, const QString &reason)
{
    return {Diagnostic::Severity::Error, path, 0, 0, QStringLiteral("cannot be read: ") + reason};
}

QString systemError()
{
    return qt_error_string(errno);
}

/// A file that is being read, in a way that a signal ends.
class Input
{
public:
    Input(const QString &path, Pipes pipes);
    ~Input()
    {
        if (m_fd > STDIN_FILENO)
            ::close(m_fd);
    }
    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;

    /// Why it cannot be read; empty if it can be.
    const QString &error() const { return m_error; }

    /// As read(2), but it waits for a pipe.
    ssize_t read(char *buffer, int size) const;

private:
    void checkKind(const struct stat &status, Pipes pipes);

    int m_fd = -1;
    bool m_isFile = false;
    QString m_error;
};

Input::Input(const QString &path, Pipes pipes)
{
    struct stat status = {};
    if (path == QLatin1String("-")) {
        m_fd = STDIN_FILENO;
        m_isFile = ::fstat(m_fd, &status) == 0 && S_ISREG(status.st_mode);
        return;
    }
    const QByteArray name = QFile::encodeName(path);
    // Asked first, because to open some devices is to start something.
    if (::stat(name.constData(), &status) == 0)
        checkKind(status, pipes);
    if (!m_error.isEmpty())
        return;
    // To open a pipe would wait for somebody to write to it, and no signal could end that.
    m_fd = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (m_fd < 0 || ::fstat(m_fd, &status) != 0)
        m_error = systemError();
    else
        checkKind(status, pipes);
}

void Input::checkKind(const struct stat &status, Pipes pipes)
{
    m_isFile = S_ISREG(status.st_mode);
    if (S_ISDIR(status.st_mode))
        m_error = QStringLiteral("it is a folder");
    else if (S_ISFIFO(status.st_mode) && pipes == Pipes::Refused)
        m_error = QStringLiteral("it is a pipe; only files named on the command line can be");
    else if (!m_isFile && !S_ISFIFO(status.st_mode))
        m_error = QStringLiteral("it is neither a file nor a pipe");
}

ssize_t Input::read(char *buffer, int size) const
{
    for (;;) {
        pollfd readable = {m_fd, POLLIN, 0};
        if (!m_isFile && ::poll(&readable, 1, -1) < 0)
            return -1;
        const ssize_t result = ::read(m_fd, buffer, static_cast<std::size_t>(size));
        if (result >= 0 || errno != EAGAIN)
            return result;
    }
}

QString cannotWrite(const QString &path, const QString &reason)
{
    return QStringLiteral("%1 cannot be written: %2").arg(path, reason);
}

/// Names rather than inodes, which may belong to another file by the time of the question.
std::set<QByteArray> &filesRead()
{
    static std::set<QByteArray> names;
    return names;
}

bool areSame(const struct stat &one, const QByteArray &name)
{
    struct stat other = {};
    return stat(name.constData(), &other) == 0 && other.st_dev == one.st_dev
        && other.st_ino == one.st_ino;
}

QString writeStandardOutput(const QByteArray &content)
{
    errno = 0;
    const auto size = static_cast<std::size_t>(content.size());
    // Flushed here, since a full disk shows only then.
    if (std::fwrite(content.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return {};
    const QString error =
        cannotWrite(QStringLiteral("the standard output"), qt_error_string(errno));
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
    const Input input(path, pipes);
    if (!input.error().isEmpty())
        return fail(input.error());
    noteRead(path);
    QByteArray content;
    // In parts: a pipe has no size, and may have no end.
    while (content.size() <= maxSize) {
        QByteArray part(static_cast<int>(std::min<qint64>(maxSize + 1 - content.size(), 1 << 20)),
                        Qt::Uninitialized);
        const auto size = static_cast<int>(input.read(part.data(), part.size()));
        if (size < 0)
            return fail(errno == EINTR ? QStringLiteral("interrupted") : systemError());
        if (size == 0)
            break;
        content.append(part.constData(), size);
    }
    if (content.size() > maxSize)
        return fail(
            QStringLiteral("it is larger than %1 MiB").arg(maxSize / (qint64{1024} * 1024)));
    return content;
}

void noteRead(const QString &path)
{
    filesRead().insert(
        QFile::encodeName(path == QLatin1String("-") ? QStringLiteral("/dev/stdin") : path));
}

bool wasRead(const QString &path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISREG(status.st_mode)
        && std::any_of(filesRead().begin(), filesRead().end(),
                       [&](const QByteArray &name) { return areSame(status, name); });
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
