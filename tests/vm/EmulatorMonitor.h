#ifndef EMULATORMONITOR_H
#define EMULATORMONITOR_H

#include <QByteArray>
#include <QJsonObject>

/// The monitor of the emulator that this guest runs in: plugs in emulated hardware and presses its
/// keys. Aborts the process if the emulator refuses.
class EmulatorMonitor
{
public:
    EmulatorMonitor();
    ~EmulatorMonitor();
    EmulatorMonitor(const EmulatorMonitor &) = delete;
    EmulatorMonitor &operator=(const EmulatorMonitor &) = delete;

    /// Plugs in a USB keyboard. The kernel takes a while to detect it.
    void plugKeyboard();
    /// Unplugs the keyboard if it is plugged in, as does the destructor. The kernel takes a while
    /// to notice.
    void unplugKeyboard();
    /// Presses or releases a key of the USB keyboard, by QEMU's name for it: "a", "kp_enter" …
    void key(const char *name, bool down);
    /// Presses and releases the power button.
    void pressPowerButton();

private:
    QJsonObject ask(const char *command, const QJsonObject &arguments);
    void execute(const char *command, const QJsonObject &arguments = QJsonObject());
    void send(const QJsonObject &message) const;
    QJsonObject answerTo(int id);

    int m_fd;
    int m_lastId;
    QByteArray m_received;
};

#endif
