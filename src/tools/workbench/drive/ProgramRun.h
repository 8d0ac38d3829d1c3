#ifndef VORN_WORKBENCH_PROGRAMRUN_H
#define VORN_WORKBENCH_PROGRAMRUN_H

#include "ProgramOutput.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace Vorn::Workbench {

/// A program that runs with a preloaded library and a socket to it, whose number is in the
/// program's variable VORN_DRIVE_SOCKET. When the program has ended, so have the processes of its
/// group.
///
/// Only one thread may use it, the one that made it: the system kills the program when that ends.
class ProgramRun
{
public:
    struct Start
    {
        QStringList command; ///< the program, looked for as a shell does, and its arguments
        QString preload; ///< the library; empty for none
        QStringList environment; ///< "NAME=value", added to this process's
        bool passesOutput = true; ///< what the program prints is shown on stderr
        int quitMs = 3000; ///< how long end() waits after the request to quit
        int terminateMs = 3000; ///< and after SIGTERM
        int closedMs = 2000; ///< how long its end may come after that of its socket
    };

    /// Starts it. What is preloaded already stays so, behind @p start's library; it alone is in the
    /// program's variable VORN_DRIVE_PRELOAD, for the program's children.
    explicit ProgramRun(const Start &start);
    /// Ends it.
    ~ProgramRun();
    ProgramRun(const ProgramRun &) = delete;
    ProgramRun &operator=(const ProgramRun &) = delete;

    /// Why it could not be started, with the program's name; empty if it was.
    QString failure() const { return m_failure; }

    /// This process's end, non-blocking. Stays open as long as this object.
    int socket() const { return m_socket; }

    enum class Ready {
        Socket, ///< there is something to read
        Closed, ///< the program has closed its end, and has not ended since
        Ended, ///< and everything has been read from the socket
        TimedOut,
        Interrupted, ///< see Interruption
    };

    /// Waits for something to read, or for the program's end. Takes what the program prints.
    /// @param timeoutMs negative for no limit. When the program has closed its socket, its end is
    /// waited for in any case, for closedMs.
    Ready wait(int timeoutMs);

    /// Also ends its group, and takes what is left of its output, when it has ended.
    bool isRunning();

    /// "exited with status 3", "was killed by SIGSEGV (Segmentation fault)"; empty as long as it
    /// runs.
    QString ending() const { return m_ending; }

    /// Ends it if it runs: closes the socket for writing, as the request to quit, then sends
    /// SIGTERM, then SIGKILL. After an interruption it begins with SIGTERM.
    void end();

    /// Whether it ended by itself, or when asked to quit.
    bool hasQuit() const { return m_pid < 0 && m_lastSignal == 0; }

    /// The last 64 KiB that it printed, both streams in order.
    QByteArray output() const { return m_output.kept(); }

    /// The same in printable lines.
    QStringList outputLines() const { return m_output.lines(); }

private:
    void start(const Start &start);
    bool hasMessage();
    bool waitForEnd(int timeoutMs, bool wasInterrupted);
    void sleepUntil(const QDeadlineTimer &deadline, bool wasInterrupted);
    void noteEnding(int code, int status);
    void takeOutput();
    void takeRestOfOutput();

    const int m_quitMs;
    const int m_terminateMs;
    const int m_closedMs;
    ProgramOutput m_output;
    QString m_failure;
    pid_t m_pid = -1; ///< -1 when it has ended
    int m_pidDescriptor = -1; ///< readable when it has ended; -1 where the system has none
    int m_socket = -1;
    int m_outputPipe = -1;
    bool m_isClosed = false;
    QDeadlineTimer m_closedUntil; ///< for its end to come
    QStringList m_refusals; ///< what it did not react to
    int m_lastSignal = 0; ///< that end() sent
    QString m_ending;
};

} // namespace Vorn::Workbench

#endif
