#ifndef PROGRAM_H
#define PROGRAM_H

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

/// A program that runs in parallel with the test until this object is destroyed, at the latest. Its
/// output is collected.
class Program : public QProcess
{
public:
    enum class User { Root, Nobody };

    explicit Program(const QString &path, const QStringList &arguments = {},
                     User user = User::Root);
    ~Program() override;

    /// The output so far, including stderr.
    QByteArray printed();
    int lines() { return static_cast<int>(printed().count('\n')); }

    /// Sends a signal, by default SIGTERM as a service manager would, and returns the exit status,
    /// or -1 if the program does not exit or is killed by a signal.
    int finish(int signal = 15);
    /// Waits until the program exits; returns the same as finish().
    int wait();

#if QT_VERSION_MAJOR < 6
protected:
    // Qt 6 takes a function in its place.
    void setupChildProcess() override
    {
        giveUpRights();
    }
#endif

private:
    void giveUpRights();

    const User m_user;
    QByteArray m_printed;
};

#endif
