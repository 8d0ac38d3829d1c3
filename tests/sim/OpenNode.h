#ifndef OPENNODE_H
#define OPENNODE_H

#include <QByteArray>
#include <QList>
#include <QString>

#include <linux/input.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <ostream>
#include <poll.h>
#include <sys/ioctl.h>
#include <tuple>
#include <unistd.h>
#include <vector>

/// A record without its time.
struct Event
{
    int type;
    int code;
    int value;

    bool operator==(const Event &other) const
    {
        return std::tie(type, code, value) == std::tie(other.type, other.code, other.value);
    }
};

inline std::ostream &operator<<(std::ostream &stream, const Event &event)
{
    return stream << '{' << event.type << ' ' << event.code << ' ' << event.value << '}';
}

inline const Event report = {EV_SYN, SYN_REPORT, 0};
/// Ends packets that come from the kernel, not from a driver.
inline const Event syntheticReport = {EV_SYN, SYN_REPORT, 1};

inline qint64 msecsOf(const input_event &record)
{
    return static_cast<qint64>(record.input_event_sec) * 1000
        + static_cast<qint64>(record.input_event_usec) / 1000;
}

/// A descriptor of a node, opened as any program would. Closed by the destructor.
class OpenNode
{
public:
    explicit OpenNode(const QString &path, int flags = O_RDONLY | O_NONBLOCK)
        : m_fd(::open(path.toUtf8().constData(), flags))
        , m_openError(m_fd < 0 ? errno : 0)
    { }
    ~OpenNode() { close(); }
    OpenNode(const OpenNode &) = delete;
    OpenNode &operator=(const OpenNode &) = delete;

    int fd() const { return m_fd; }
    bool isOpen() const { return m_fd >= 0; }
    int openError() const { return m_openError; }

    void close()
    {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
    }

    bool isReadable() const
    {
        pollfd descriptor = {m_fd, POLLIN, 0};
        return ::poll(&descriptor, 1, 0) == 1;
    }

    /// One `read`.
    /// @return the number of bytes, or a negative `errno`
    ssize_t readInto(void *buffer, std::size_t size) const
    {
        const ssize_t result = ::read(m_fd, buffer, size);
        return result < 0 ? -errno : result;
    }

    /// The records of one `read`; none if it fails.
    std::vector<input_event> readRecords(std::size_t count = 64) const
    {
        std::vector<input_event> records(count);
        const ssize_t bytes = readInto(records.data(), count * sizeof(input_event));
        records.resize(bytes < 0 ? 0 : static_cast<std::size_t>(bytes) / sizeof(input_event));
        return records;
    }

    /// The same, without their times.
    std::vector<Event> read(std::size_t count = 64) const
    {
        std::vector<Event> result;
        for (const input_event &record : readRecords(count))
            result.push_back({record.type, record.code, record.value});
        return result;
    }

    /// The `errno` of one `read`; 0 if it succeeds.
    int readError() const
    {
        input_event record;
        const ssize_t result = readInto(&record, sizeof(record));
        return result < 0 ? static_cast<int>(-result) : 0;
    }

    /// One `ioctl`.
    /// @return its result, or a negative `errno`
    template <typename Argument>
    int ioctl(unsigned long request, Argument argument) const
    {
        const int result = ::ioctl(m_fd, request, argument);
        return result < 0 ? -errno : result;
    }

private:
    int m_fd;
    int m_openError;
};

#endif
