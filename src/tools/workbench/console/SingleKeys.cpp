#include "SingleKeys.h"

#include "Terminal.h"

#include <QtGlobal>

#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace Vorn::Workbench {

namespace {

// Those that Interruption catches end in a destructor.
constexpr int deadlySignals[] = {SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL};

termios terminalBefore = {};
termios terminalWithKeys = {};
volatile std::sig_atomic_t areSingle = 0;

void set(int signal, void (*handler)(int), int flags)
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

bool isDefault(int signal)
{
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL;
}

// There a process is stopped for touching the terminal. One that is not the session's has no
// foreground.
bool isInBackground()
{
    const pid_t foreground = tcgetpgrp(STDIN_FILENO);
    return foreground > 0 && foreground != getpgrp();
}

// The handler has been reset: this time the signal does what it always does.
void onDeadlySignal(int signal)
{
    SingleKeys::undo();
    raise(signal);
}

void onContinue(int)
{
    const int savedErrno = errno;
    if (areSingle != 0 && !isInBackground())
        tcsetattr(STDIN_FILENO, TCSANOW, &terminalWithKeys);
    errno = savedErrno;
}

void onStop(int)
{
    const int savedErrno = errno;
    tcsetattr(STDIN_FILENO, TCSANOW, &terminalBefore);
    set(SIGTSTP, SIG_DFL, 0);
    raise(SIGTSTP);
    // Here it goes on.
    set(SIGTSTP, onStop, SA_NODEFER | SA_RESTART);
    errno = savedErrno;
}

} // namespace

SingleKeys::SingleKeys(int shownOn)
{
    if (!isTerminal(STDIN_FILENO) || !isTerminal(shownOn)
        || tcgetattr(STDIN_FILENO, &terminalBefore) != 0)
        return;
    terminalWithKeys = terminalBefore;
    terminalWithKeys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    terminalWithKeys.c_cc[VMIN] = 1;
    terminalWithKeys.c_cc[VTIME] = 0;
    // exit() runs no destructors of locals, and a shell without echo is no use to anyone.
    static const int registered = std::atexit(undo);
    Q_UNUSED(registered)
    for (const int signal : deadlySignals) {
        // A sanitizer has handlers of its own.
        if (isDefault(signal))
            set(signal, onDeadlySignal, static_cast<int>(SA_RESETHAND | SA_NODEFER));
    }
    set(SIGTSTP, onStop, SA_NODEFER | SA_RESTART);
    set(SIGCONT, onContinue, SA_RESTART);
    areSingle = 1;
    if (!isInBackground())
        tcsetattr(STDIN_FILENO, TCSANOW, &terminalWithKeys);
}

SingleKeys::~SingleKeys()
{
    if (!areOn())
        return;
    undo();
    set(SIGTSTP, SIG_DFL, 0);
    set(SIGCONT, SIG_DFL, 0);
}

bool SingleKeys::areOn()
{
    return areSingle != 0;
}

void SingleKeys::undo()
{
    const int savedErrno = errno;
    if (areSingle != 0 && !isInBackground())
        tcsetattr(STDIN_FILENO, TCSANOW, &terminalBefore);
    areSingle = 0;
    errno = savedErrno;
}

} // namespace Vorn::Workbench
