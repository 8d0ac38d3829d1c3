#include "AgentSocket.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Vorn::Drive {

AgentSocket::AgentSocket(int descriptor)
    : m_descriptor(descriptor)
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

AgentSocket::~AgentSocket()
{
    ::close(m_descriptor);
}

void AgentSocket::send(const QByteArray &line)
{
    int sent = 0;
    while (m_isOpen && sent < line.size()) {
        // No SIGPIPE: it would end the program, which may outlive the driver.
        const ssize_t count = ::send(m_descriptor, line.constData() + sent,
                                     static_cast<std::size_t>(line.size() - sent), MSG_NOSIGNAL);
        if (count >= 0)
            sent += static_cast<int>(count);
        else if (errno != EINTR)
            m_isOpen = false;
    }
}

std::optional<QByteArray> AgentSocket::waitForLine()
{
    while (m_isOpen) {
        if (std::optional<QByteArray> line = takeLine())
            return line;
        receive(0);
    }
    return {};
}

std::optional<QByteArray> AgentSocket::takeLine()
{
    while (!m_received.contains('\n')) {
        if (!receive(MSG_DONTWAIT))
            return {};
    }
    const auto end = m_received.indexOf('\n') + 1;
    const QByteArray line = m_received.left(end);
    m_received.remove(0, end);
    return line;
}

bool AgentSocket::receive(int flags)
{
    char buffer[16 * 1024];
    const ssize_t count = ::recv(m_descriptor, buffer, sizeof buffer, flags);
    if (count > 0)
        m_received.append(buffer, static_cast<int>(count));
    else if (count == 0 || (errno != EINTR && errno != EAGAIN))
        m_isOpen = false;
    return count > 0;
}

} // namespace Vorn::Drive
