#include "Terminal.h"

#include "vorn.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/times.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <utility>

namespace Vorn::Workbench {

namespace {

constexpr qint64 progressIntervalMs = 100;
constexpr int caughtSignals[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t interruptionRequested = 0;
int signalPipe[2] = {-1, -1};

clock_t interruptionTicks = 0;

/// Runs at any moment, with the other signals blocked; the event loop does the rest.
///
/// The same Ctrl-C may come twice: from the terminal, and passed on by a program that runs this one
/// (umockdev-run and sudo do). Only one that comes later means that the process does not react.
void onSignal(int signal)
{
    const int savedErrno = errno;
    tms unused = {};
    const clock_t now = times(&unused);
    if (interruptionRequested == 0) {
        interruptionTicks = now;
        interruptionRequested = 1;
        const char byte = 0;
        const ssize_t written = write(signalPipe[1], &byte, 1);
        Q_UNUSED(written)
    } else if (static_cast<qint64>(now - interruptionTicks) * 1000
               >= static_cast<qint64>(Interruption::repetitionMs) * sysconf(_SC_CLK_TCK))
    {
        struct sigaction action = {};
        action.sa_handler = SIG_DFL;
        sigaction(signal, &action, nullptr);
        raise(signal);
    }
    errno = savedErrno;
}

/// The real time, also while the process's clocks are virtual.
qint64 processorTimeMs()
{
    return static_cast<qint64>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

termios savedTerminal;
bool isTerminalChanged = false;

void restoreTerminal()
{
    if (std::exchange(isTerminalChanged, false))
        tcsetattr(STDIN_FILENO, TCSANOW, &savedTerminal);
}

} // namespace

bool isTerminal(int descriptor)
{
    return isatty(descriptor) == 1;
}

bool isColoured(Colour colour, int descriptor)
{
    if (colour != Colour::Auto)
        return colour == Colour::Always;
    return isTerminal(descriptor) && qEnvironmentVariableIsEmpty("NO_COLOR")
        && qgetenv("TERM") != "dumb";
}

Progress::Progress()
    : m_isShown(isTerminal(STDERR_FILENO))
    , m_lastTime(processorTimeMs())
{ }

Progress::~Progress()
{
    clear();
}

bool Progress::isDue() const
{
    return m_isShown && processorTimeMs() - m_lastTime >= progressIntervalMs;
}

void Progress::show(const QString &text)
{
    if (!isDue())
        return;
    m_lastTime = processorTimeMs();
    m_isDrawn = true;
    winsize size = {};
    const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
    const int width = isKnown ? size.ws_col - 1 : 79;
    std::fprintf(stderr, "\r\033[K%s", qPrintable(text.left(width)));
    std::fflush(stderr);
}

void Progress::clear()
{
    if (std::exchange(m_isDrawn, false))
        std::fputs("\r\033[K", stderr);
}

Interruption::Interruption(std::function<void()> callback)
{
    interruptionRequested = 0;
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    if (callback) {
        auto *notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
        Vorn::connect(notifier, &QSocketNotifier::activated, this,
                      [notifier, callback = std::move(callback)] {
                          notifier->setEnabled(false);
                          callback();
                      });
    }
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    for (const int signal : caughtSignals)
        sigaddset(&action.sa_mask, signal);
    for (const int signal : caughtSignals)
        sigaction(signal, &action, nullptr);
}

Interruption::~Interruption()
{
    // After a signal the process is about to end, and the same one may still come a second time.
    if (!isRequested()) {
        for (const int signal : caughtSignals)
            std::signal(signal, SIG_DFL);
    }
    qDeleteAll(findChildren<QSocketNotifier *>());
    for (int &descriptor : signalPipe) {
        if (descriptor >= 0)
            close(descriptor);
        descriptor = -1;
    }
}

bool Interruption::isRequested()
{
    return interruptionRequested != 0;
}

Keyboard::Keyboard(std::function<void(char)> onKey)
{
    if (isTerminal(STDIN_FILENO) && tcgetattr(STDIN_FILENO, &savedTerminal) == 0) {
        termios keys = savedTerminal;
        keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        keys.c_cc[VMIN] = 1;
        keys.c_cc[VTIME] = 0;
        static const int registered = std::atexit(restoreTerminal);
        Q_UNUSED(registered)
        isTerminalChanged = tcsetattr(STDIN_FILENO, TCSANOW, &keys) == 0;
    }
    auto *notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
    Vorn::connect(notifier, &QSocketNotifier::activated, this,
                  [notifier, onKey = std::move(onKey)] {
                      char key = 0;
                      if (read(STDIN_FILENO, &key, 1) == 1)
                          onKey(key);
                      else
                          notifier->setEnabled(false);
                  });
}

Keyboard::~Keyboard()
{
    restoreTerminal();
}

} // namespace Vorn::Workbench
