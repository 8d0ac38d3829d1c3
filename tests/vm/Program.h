#ifndef PROGRAM_H
#define PROGRAM_H

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

/// A program that runs beside the test as a process of its own; what it prints is collected. It
/// does not outlive this object.
class Program : public QProcess
{
public:
    enum class User { Root, Nobody };

    explicit Program(const QString &path, const QStringList &arguments = {},
                     User user = User::Root);
    ~Program() override;

    /// What was printed so far, errors included.
    QByteArray printed();
    int lines() { return printed().count('\n'); }

    /// Sends a signal, by default the one of a service manager, and returns the exit status; -1 if
    /// the program does not end, or not by itself.
    int finish(int signal = 15);
    /// Waits until it ends by itself, and returns as finish() does.
    int wait();

protected:
    void setupChildProcess() override;

private:
    const User m_user;
    QByteArray m_printed;
};

#endif
