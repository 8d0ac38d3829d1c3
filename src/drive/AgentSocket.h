#ifndef VORN_DRIVE_AGENTSOCKET_H
#define VORN_DRIVE_AGENTSOCKET_H

#include <QByteArray>

#include <optional>

namespace Vorn::Drive {

/// The agent's end of the socket. A forked child of the program never uses it.
class AgentSocket
{
public:
    /// @param descriptor closed at the end; not inherited by other programs from now on
    explicit AgentSocket(int descriptor);
    ~AgentSocket();
    AgentSocket(const AgentSocket &) = delete;
    AgentSocket &operator=(const AgentSocket &) = delete;

    int descriptor() const { return m_descriptor; }
    /// Whether the driver is still there, as far as is known.
    bool isOpen() const { return m_isOpen; }

    /// Sends a line, and waits until the driver has taken it.
    void send(const QByteArray &line);

    /// Waits for a whole line; nothing if the driver has gone.
    std::optional<QByteArray> waitForLine();
    /// A whole line, if one has come.
    std::optional<QByteArray> takeLine();

private:
    bool receive(int flags);

    const int m_descriptor;
    bool m_isOpen = true;
    QByteArray m_received;
};

} // namespace Vorn::Drive

#endif
