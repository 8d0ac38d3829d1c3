#include "InputFile.h"

#include <QFile>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <set>

namespace Vorn::Workbench {

namespace {

int endOfWaits = -1;

QString systemError()
{
    return qt_error_string(errno);
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

/// Why something of this kind is not read; empty if it is.
QString refusal(const struct stat &status, Pipes pipes)
{
    if (S_ISDIR(status.st_mode))
        return QStringLiteral("it is a folder");
    if (S_ISFIFO(status.st_mode) && pipes == Pipes::Refused)
        return QStringLiteral("it is a pipe; only files named on the command line can be");
    if (!S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode))
        return QStringLiteral("it is neither a file nor a pipe");
    return {};
}

} // namespace

InputFile::~InputFile()
{
    if (m_fd > STDIN_FILENO)
        ::close(m_fd);
}

QString InputFile::openForReading(const QString &path, Pipes pipes)
{
    if (path == QLatin1String("-")) {
        m_fd = STDIN_FILENO;
    } else {
        QString error = openNamed(path, pipes);
        if (!error.isEmpty())
            return error;
    }
    struct stat status = {};
    m_isFile = ::fstat(m_fd, &status) == 0 && S_ISREG(status.st_mode);
    m_size = m_isFile ? status.st_size : 0;
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    filesRead().insert(
        QFile::encodeName(path == QLatin1String("-") ? QStringLiteral("/dev/stdin") : path));
    return {};
}

QString InputFile::openNamed(const QString &path, Pipes pipes)
{
    struct stat status = {};
    const QByteArray name = QFile::encodeName(path);
    // Asked first, because to open some devices is to start something.
    if (::stat(name.constData(), &status) == 0) {
        QString error = refusal(status, pipes);
        if (!error.isEmpty())
            return error;
    }
    // To open a pipe would wait for somebody to write to it, and no signal could end that.
    m_fd = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    return m_fd < 0 || ::fstat(m_fd, &status) != 0 ? systemError() : refusal(status, pipes);
}

qint64 InputFile::readData(char *data, qint64 maxSize)
{
    for (;;) {
        pollfd readable[] = {{m_fd, POLLIN, 0}, {endOfWaits, POLLIN, 0}};
        bool isReady = m_isFile || ::poll(readable, std::size(readable), -1) >= 0;
        if (!m_isFile && isReady && readable[0].revents == 0) {
            isReady = false;
            errno = EINTR;
        }
        const ssize_t size =
            isReady ? ::read(m_fd, data, static_cast<std::size_t>(maxSize)) : ssize_t{-1};
        if (size >= 0)
            return size;
        if (isReady && errno == EAGAIN)
            continue;
        setErrorString(errno == EINTR ? QStringLiteral("interrupted") : systemError());
        return -1;
    }
}

void InputFile::endWaitsAt(int descriptor)
{
    endOfWaits = descriptor;
}

qint64 InputFile::writeData(const char *, qint64)
{
    return -1;
}

bool wasRead(const QString &path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISREG(status.st_mode)
        && std::any_of(filesRead().begin(), filesRead().end(),
                       [&](const QByteArray &name) { return areSame(status, name); });
}

} // namespace Vorn::Workbench
