#ifndef TERMINALJOB_H
#define TERMINALJOB_H

#include "TerminalInput.h"

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

/// A program that a shell has started in a terminal of their own, as the shell sees it.
class TerminalJob
{
public:
    enum class Place { Foreground, Background };

    /// Runs both in processes of their own.
    /// @return the status that @p shell returns; -1 if it did not
    static int run(Place place, int (*program)(), int (*shell)(TerminalJob *job))
    {
        int keyboard = -1;
        const pid_t process = forkpty(&keyboard, nullptr, nullptr, nullptr);
        if (process == 0) {
            TerminalJob job(place, program);
            std::_Exit(shell(&job));
        }
        int status = 0;
        const bool hasExited = waitpid(process, &status, 0) == process && WIFEXITED(status);
        close(keyboard);
        return hasExited ? WEXITSTATUS(status) : -1;
    }

    /// Waits until it has been stopped. @return by which signal; -1 if it has ended
    int stopped() { return wait() && WIFSTOPPED(m_status) ? WSTOPSIG(m_status) : -1; }
    /// Waits for its end. @return its status; -1 if it did not exit
    int status() { return wait() && WIFEXITED(m_status) ? WEXITSTATUS(m_status) : -1; }

    void bringTo(Place place) const
    {
        tcsetpgrp(STDIN_FILENO, place == Place::Foreground ? m_process : getpgrp());
    }
    void goOn() const { kill(m_process, SIGCONT); }

private:
    TerminalJob(Place place, int (*program)())
        : m_process(fork())
    {
        std::signal(SIGTTOU, SIG_IGN);
        if (m_process == 0) {
            setpgid(0, 0);
            if (place == Place::Foreground)
                tcsetpgrp(STDIN_FILENO, getpid());
            std::signal(SIGTTOU, SIG_DFL);
            std::_Exit(program());
        }
        setpgid(m_process, m_process);
    }

    bool wait() { return waitpid(m_process, &m_status, WUNTRACED) == m_process; }

    pid_t m_process;
    int m_status = 0;
};

#endif
