#ifndef WRITTENLOG_H
#define WRITTENLOG_H

#include "LogSessions.h"
#include "Session.h"

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

/// A log that is written line by line, a line each 10 ms, and the session that is read from it.
class WrittenLog
{
public:
    static constexpr const char *handlers = "BasicInputHandler";
    static constexpr const char *listeners = "LinuxInputListener";
    static constexpr const char *detectors = "KeyProcessing";

    WrittenLog &add(const char *logger, const QString &message);
    /// Time passes before the next line.
    WrittenLog &wait(int milliseconds);
    /// How long the lines from here on take each.
    WrittenLog &pace(int microseconds);
    /// Whose the next lines are.
    WrittenLog &of(const char *process);

    /// A device with keys, and switches if both its listeners are ready.
    WrittenLog &device(int number, const QString &name, bool hasSwitches = false);
    /// "Enter LinuxInputListener::readData: 5"
    WrittenLog &read(int descriptor);
    WrittenLog &record(int code, int value);
    /// "30 press", "48 release"
    WrittenLog &stored(const QStringList &keys);
    /// The same after a line about a key that is there already.
    WrittenLog &storedAgain(int code, const QStringList &keys);
    WrittenLog &passedOn(int code, int value);
    /// All lines of a key that goes down, or up, while no other one is down.
    WrittenLog &press(int descriptor, int code);
    WrittenLog &release(int descriptor, int code);
    /// What a handler reports, without the line of the bus.
    WrittenLog &report(const QString &device, const QString &command, const QString &state,
                       const QString &identifier = {});
    /// "Vorn::InputEvent(16) press"
    WrittenLog &bus(const QString &command, const QString &state);
    /// Both, of the panel, or of the remote for its Number1.
    WrittenLog &event(const QString &identifier, const QString &command, const QString &state);
    WrittenLog &select(const QString &identifier);

    /// To be called once, at the end.
    std::vector<Vorn::Workbench::SessionEntry> session();
    /// The same in a line each, without the records that only end a packet.
    std::string transcript();

private:
    std::vector<Vorn::Workbench::SessionEntry> m_entries;
    Vorn::Workbench::LogSessions m_sessions{
        QStringLiteral("a.log"),
        [this](const Vorn::Workbench::SessionEntry &entry) { m_entries.push_back(entry); }};
    QString m_process;
    qint64 m_number = 0;
    qint64 m_time = 0;
    qint64 m_pace = 10'000;
};

#endif
