#include "EmulatorMonitor.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

constexpr int answerLimitMs = 20'000;
const QString keyboard = QStringLiteral("keyboard");

} // namespace

EmulatorMonitor::EmulatorMonitor()
    : m_fd(::open(qgetenv("VORN_VM_MONITOR").constData(), O_RDWR | O_CLOEXEC))
    // The emulator may still be answering an earlier process, so ids must differ between processes.
    , m_lastId(static_cast<int>(::getpid()) * 1000)
{
    if (m_fd < 0)
        qFatal("no port to the emulator's monitor (%s); tests of emulated hardware need a guest",
               std::strerror(errno));
    // Needed once per boot; later it is refused, which does no harm.
    ask("qmp_capabilities", {});
}

EmulatorMonitor::~EmulatorMonitor()
{
    unplugKeyboard();
    ::close(m_fd);
}

void EmulatorMonitor::plugKeyboard()
{
    execute("device_add",
            {{QStringLiteral("driver"), QStringLiteral("usb-kbd")},
             {QStringLiteral("id"), keyboard},
             {QStringLiteral("bus"), QStringLiteral("xhci.0")}});
}

void EmulatorMonitor::unplugKeyboard()
{
    // Refused if there is none.
    ask("device_del", {{QStringLiteral("id"), keyboard}});
}

void EmulatorMonitor::key(const char *name, bool down)
{
    const QJsonObject key{{QStringLiteral("type"), QStringLiteral("qcode")},
                          {QStringLiteral("data"), QString::fromLatin1(name)}};
    const QJsonObject event{
        {QStringLiteral("type"), QStringLiteral("key")},
        {QStringLiteral("data"),
         QJsonObject{{QStringLiteral("down"), down}, {QStringLiteral("key"), key}}}};
    execute("input-send-event", {{QStringLiteral("events"), QJsonArray{event}}});
}

void EmulatorMonitor::pressPowerButton()
{
    execute("system_powerdown");
}

QJsonObject EmulatorMonitor::ask(const char *command, const QJsonObject &arguments)
{
    send({{QStringLiteral("execute"), QString::fromLatin1(command)},
          {QStringLiteral("arguments"), arguments},
          {QStringLiteral("id"), ++m_lastId}});
    return answerTo(m_lastId);
}

void EmulatorMonitor::execute(const char *command, const QJsonObject &arguments)
{
    const QJsonObject answer = ask(command, arguments);
    if (!answer.contains(QStringLiteral("return")))
        qFatal("the emulator refuses %s: %s", command,
               QJsonDocument(answer).toJson(QJsonDocument::Compact).constData());
}

void EmulatorMonitor::send(const QJsonObject &message) const
{
    const QByteArray line = QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
    if (::write(m_fd, line.constData(), static_cast<std::size_t>(line.size())) != line.size())
        qFatal("cannot write to the emulator's monitor: %s", std::strerror(errno));
}

// Skips the greeting, event notifications and answers to other processes.
QJsonObject EmulatorMonitor::answerTo(int id)
{
    for (;;) {
        QByteArray::size_type end = 0;
        while ((end = m_received.indexOf('\n')) >= 0) {
            QJsonObject message = QJsonDocument::fromJson(m_received.left(end)).object();
            m_received.remove(0, end + 1);
            if (message.value(QStringLiteral("id")).toInt(-1) == id)
                return message;
        }
        pollfd ready = {m_fd, POLLIN, 0};
        if (::poll(&ready, 1, answerLimitMs) != 1)
            qFatal("the emulator's monitor does not answer");
        char buffer[4096];
        const ssize_t size = ::read(m_fd, buffer, sizeof(buffer));
        if (size <= 0)
            qFatal("the emulator's monitor is gone: %s", std::strerror(errno));
        m_received.append(buffer, static_cast<int>(size));
    }
}
