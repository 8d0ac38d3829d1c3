#include "Program.h"

#include <grp.h>
#include <unistd.h>

#include <csignal>

Program::Program(const QString &path, const QStringList &arguments, User user)
    : m_user(user)
{
    setProcessChannelMode(QProcess::MergedChannels);
#if QT_VERSION_MAJOR >= 6
    setChildProcessModifier([this] { giveUpRights(); });
#endif
    start(path, arguments);
    if (!waitForStarted())
        qFatal("cannot start %s: %s", qPrintable(path), qPrintable(errorString()));
}

Program::~Program()
{
    if (state() != QProcess::NotRunning)
        finish();
}

QByteArray Program::printed()
{
    m_printed += readAll();
    return m_printed;
}

int Program::finish(int signal)
{
    ::kill(static_cast<pid_t>(processId()), signal);
    return wait();
}

int Program::wait()
{
    if (state() != QProcess::NotRunning && !waitForFinished()) {
        kill();
        waitForFinished();
        return -1;
    }
    printed();
    return exitStatus() == QProcess::NormalExit ? exitCode() : -1;
}

void Program::giveUpRights()
{
    constexpr unsigned int nobody = 65534;
    if (m_user == User::Nobody
        && (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0))
        _exit(99);
}
