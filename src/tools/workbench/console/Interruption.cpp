#include "Interruption.h"

#include "InputFile.h"
#include "SingleKeys.h"
#include "vorn.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <sys/times.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

namespace Vorn::Workbench {

namespace {

constexpr int caughtSignals[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t interruptionRequested = 0;
int signalPipe[2] = {-1, -1};

clock_t interruptionTicks = 0;

/*
 *  first signal                  + repetitionMs
 *    ├──────────────────────────────┤
 *    │ flag, callback               │
 *    │ more signals are ignored     │ one more kills the process
 *
 *  The same Ctrl-C may arrive twice: from the terminal, and from a program that runs this one
 *  (umockdev-run and sudo pass it on). Only a later one means that the process does not react.
 *
 *  Only what is safe in a signal handler may be called: the event loop does the rest.
 */
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
        SingleKeys::undo();
        struct sigaction action = {};
        action.sa_handler = SIG_DFL;
        sigaction(signal, &action, nullptr);
        raise(signal);
    }
    errno = savedErrno;
}

} // namespace

Interruption::Interruption(std::function<void()> callback)
{
    interruptionRequested = 0;
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    InputFile::endWaitsAt(signalPipe[0]);
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
    // After a signal the process is about to end, and a second copy of it must not kill it.
    if (!isRequested()) {
        for (const int signal : caughtSignals)
            std::signal(signal, SIG_DFL);
    }
    qDeleteAll(findChildren<QSocketNotifier *>());
    InputFile::endWaitsAt(-1);
    for (int &descriptor : signalPipe) {
        if (descriptor >= 0)
            close(descriptor);
        descriptor = -1;
    }
}

void Interruption::request()
{
    interruptionRequested = 1;
}

bool Interruption::isRequested()
{
    return interruptionRequested != 0;
}

} // namespace Vorn::Workbench
