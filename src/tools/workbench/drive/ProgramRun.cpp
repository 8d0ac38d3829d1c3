#include "ProgramRun.h"

#include "ChildStart.h"
#include "Interruption.h"
#include "ProgramPath.h"

#include <QFile>
#include <QFileInfo>

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <iterator>

namespace Vorn::Workbench {

namespace {

constexpr char preloadVariable[] = "LD_PRELOAD";
constexpr char formerPreloadVariable[] = "VORN_DRIVE_PRELOAD";

// How often to look whether the program has ended, where nothing tells.
constexpr int lookMs = 20;
// The system ends it at once, unless it is in a device driver.
constexpr int killGraceMs = 30'000;

/// Why a library cannot be preloaded. The loader would just go on without it.
QString obstacleToPreload(const QString &library)
{
    if (library.contains(QLatin1Char(' ')) || library.contains(QLatin1Char(':')))
        return QStringLiteral("%1 cannot be preloaded, because of the blank or colon in its path; "
                              "install vorn-input elsewhere")
            .arg(library);
    if (!QFileInfo(library).isFile() || !QFileInfo(library).isReadable())
        return QStringLiteral("%1, which has to be preloaded, is missing or cannot be read; "
                              "install vorn-input again")
            .arg(library);
    return {};
}

void setVariable(QVector<QByteArray> *environment, const QByteArray &assignment)
{
    const QByteArray start = assignment.left(assignment.indexOf('=') + 1);
    environment->erase(std::remove_if(environment->begin(), environment->end(),
                                      [&](const QByteArray &its) { return its.startsWith(start); }),
                       environment->end());
    *environment += assignment;
}

QVector<QByteArray> environmentOf(const ProgramRun::Start &start)
{
    QVector<QByteArray> environment;
    for (char **variable = environ; *variable; ++variable)
        environment += QByteArray(*variable);
    for (const QString &assignment : start.environment)
        setVariable(&environment, QFile::encodeName(assignment));
    if (start.preload.isEmpty())
        return environment;
    const QByteArray former = qgetenv(preloadVariable);
    QByteArray all = QFile::encodeName(start.preload);
    if (!former.isEmpty())
        all += ':' + former;
    setVariable(&environment, QByteArray(preloadVariable) + '=' + all);
    setVariable(&environment, QByteArray(formerPreloadVariable) + '=' + former);
    return environment;
}

int openProcess(pid_t pid)
{
#ifdef SYS_pidfd_open
    return static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
#else
    Q_UNUSED(pid)
    return -1;
#endif
}

/// Whoever started this process may ignore the ends of children, and with that this process does.
void keepEndsOfChildren()
{
    struct sigaction action = {};
    if (sigaction(SIGCHLD, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
        std::signal(SIGCHLD, SIG_DFL);
}

/// Like poll(), but an interruption ends it, also one that comes before the wait.
void pollUnlessInterrupted(pollfd *descriptors, nfds_t count, int timeoutMs, bool wasInterrupted)
{
    sigset_t interrupting;
    sigemptyset(&interrupting);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&interrupting, signal);
    sigset_t before;
    sigprocmask(SIG_BLOCK, &interrupting, &before);
    const timespec timeout = {timeoutMs / 1000, timeoutMs % 1000 * 1'000'000L};
    if (Interruption::isRequested() == wasInterrupted)
        ppoll(descriptors, count, timeoutMs < 0 ? nullptr : &timeout, &before);
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

QString words(int code, int status)
{
    if (code == CLD_EXITED)
        return QStringLiteral("exited with status %1").arg(status);
    const char *name = sigabbrev_np(status);
    return name ? QStringLiteral("was killed by SIG%1 (%2)")
                      .arg(QLatin1String(name), QLatin1String(sigdescr_np(status)))
                : QStringLiteral("was killed by signal %1").arg(status);
}

} // namespace

ProgramRun::ProgramRun(const Start &start)
    : m_quitMs(start.quitMs)
    , m_terminateMs(start.terminateMs)
    , m_closedMs(start.closedMs)
    , m_output(start.command.isEmpty() ? QString() : QFileInfo(start.command.first()).fileName(),
               start.passesOutput ? ProgramOutput::Shown::Yes : ProgramOutput::Shown::No)
{
    this->start(start);
}

ProgramRun::~ProgramRun()
{
    end();
    for (const int descriptor : {m_socket, m_outputPipe, m_pidDescriptor}) {
        if (descriptor >= 0)
            close(descriptor);
    }
}

void ProgramRun::start(const Start &start)
{
    if (!start.preload.isEmpty())
        m_failure = obstacleToPreload(start.preload);
    const QString program = start.command.value(0);
    const QString path = programPath(program);
    if (m_failure.isEmpty() && path.isEmpty())
        m_failure = QStringLiteral("there is no program to start");
    if (!m_failure.isEmpty())
        return;
    keepEndsOfChildren();
    QVector<QByteArray> arguments;
    for (const QString &argument : start.command)
        arguments += QFile::encodeName(argument);
    const Child child = startChild(QFile::encodeName(path), arguments, environmentOf(start));
    if (!child.error.isEmpty()) {
        m_failure = QStringLiteral("%1 cannot be started: %2").arg(path, child.error);
        return;
    }
    m_pid = child.pid;
    m_socket = child.socket;
    m_outputPipe = child.output;
    m_pidDescriptor = openProcess(m_pid);
}

ProgramRun::Ready ProgramRun::wait(int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    for (;;) {
        takeOutput();
        if (hasMessage())
            return Ready::Socket;
        // What it sent just before its end has arrived now.
        if (!isRunning())
            return hasMessage() ? Ready::Socket : Ready::Ended;
        if (Interruption::isRequested())
            return Ready::Interrupted;
        // Its end comes a moment later, and says more.
        const QDeadlineTimer &next = m_isClosed ? m_closedUntil : deadline;
        if (next.hasExpired())
            return m_isClosed ? Ready::Closed : Ready::TimedOut;
        sleepUntil(next, false);
    }
}

bool ProgramRun::isRunning()
{
    if (m_pid < 0)
        return false;
    // It keeps its number until its group has been ended, so that no other can get it.
    siginfo_t info = {};
    const auto id = static_cast<id_t>(m_pid);
    if (waitid(P_PID, id, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == 0)
        return true;
    kill(-m_pid, SIGKILL);
    waitid(P_PID, id, &info, WEXITED | WNOHANG);
    m_pid = -1;
    noteEnding(info.si_code, info.si_status);
    takeRestOfOutput();
    return false;
}

void ProgramRun::end()
{
    if (!isRunning())
        return;
    const bool wasInterrupted = Interruption::isRequested();
    if (!wasInterrupted) {
        shutdown(m_socket, SHUT_WR);
        if (waitForEnd(m_quitMs, wasInterrupted))
            return;
        if (!Interruption::isRequested())
            m_refusals += QStringLiteral("did not quit when asked");
    }
    m_lastSignal = SIGTERM;
    kill(-m_pid, SIGTERM);
    // One that is stopped gets it only when it goes on.
    kill(-m_pid, SIGCONT);
    if (waitForEnd(m_terminateMs, Interruption::isRequested()))
        return;
    m_refusals += QStringLiteral("did not end at SIGTERM");
    m_lastSignal = SIGKILL;
    kill(-m_pid, SIGKILL);
    if (!waitForEnd(killGraceMs, Interruption::isRequested()))
        m_ending = QStringLiteral("does not even end at SIGKILL");
}

/// @return false also after an interruption, unless @p wasInterrupted
bool ProgramRun::waitForEnd(int timeoutMs, bool wasInterrupted)
{
    const QDeadlineTimer deadline(timeoutMs);
    // Its messages are of no interest any more, so the socket is not waited for.
    m_isClosed = true;
    while (isRunning()) {
        if (deadline.hasExpired() || Interruption::isRequested() != wasInterrupted)
            return false;
        sleepUntil(deadline, wasInterrupted);
        takeOutput();
    }
    return true;
}

void ProgramRun::sleepUntil(const QDeadlineTimer &deadline, bool wasInterrupted)
{
    pollfd descriptors[] = {{m_isClosed ? -1 : m_socket, POLLIN, 0},
                            {m_outputPipe, POLLIN, 0},
                            {m_pidDescriptor, POLLIN, 0}};
    int timeoutMs = deadline.isForever() ? -1 : static_cast<int>(deadline.remainingTime());
    if (m_pidDescriptor < 0 && (timeoutMs < 0 || timeoutMs > lookMs))
        timeoutMs = lookMs;
    pollUnlessInterrupted(descriptors, std::size(descriptors), timeoutMs, wasInterrupted);
}

bool ProgramRun::hasMessage()
{
    if (m_isClosed || m_socket < 0)
        return false;
    char byte = 0;
    const ssize_t size = recv(m_socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    m_isClosed = size == 0 || (size < 0 && errno != EAGAIN && errno != EINTR);
    if (m_isClosed)
        m_closedUntil.setRemainingTime(m_closedMs);
    return size > 0;
}

void ProgramRun::noteEnding(int code, int status)
{
    QString its = words(code, status);
    if (m_lastSignal != 0 && code == CLD_EXITED)
        its += QStringLiteral(" after SIGTERM");
    if (m_refusals.isEmpty())
        m_ending = its;
    else
        m_ending = m_refusals.join(QStringLiteral(", ")) + QStringLiteral(", and ") + its;
}

void ProgramRun::takeOutput()
{
    char bytes[16 * 1024];
    // Not all there is: a program that prints all the time must not keep others waiting.
    for (int i = 0; i < 4 && m_outputPipe >= 0; ++i) {
        const ssize_t size = read(m_outputPipe, bytes, sizeof bytes);
        if (size < 0)
            return;
        if (size > 0) {
            m_output.add(QByteArray(bytes, static_cast<int>(size)));
        } else {
            close(m_outputPipe);
            m_outputPipe = -1;
        }
    }
}

void ProgramRun::takeRestOfOutput()
{
    // More than a pipe holds, and not endless if a process has left the group and goes on.
    for (int i = 0; i < 16; ++i)
        takeOutput();
    m_output.finish();
}

} // namespace Vorn::Workbench
