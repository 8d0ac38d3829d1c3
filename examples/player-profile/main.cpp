// The player again, with a profile for its key map instead of code. The one from player.toml is
// compiled in; --profile reads another one, and SIGHUP has it read again.

#include "ProfileOptions.h"
#include "player.h"

#include <vorn/core/vorn.h>
#include <vorn/input/Input.h>
#include <vorn/profile/ProfileInputHandler.h>
#include <vorn/profile/ProfileReader.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSocketNotifier>
#include <QTimer>

#include <log4cplus/configurator.h>
#include <log4cplus/consoleappender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>

namespace {

constexpr int exitFailed = 1;

bool configureLogging(const QString &path)
{
    if (path.isEmpty()) {
        const log4cplus::SharedAppenderPtr console(new log4cplus::ConsoleAppender(true, true));
        console->setLayout(std::make_unique<log4cplus::PatternLayout>("%-5p %c: %m%n"));
        log4cplus::Logger root = log4cplus::Logger::getRoot();
        root.addAppender(console);
        root.setLogLevel(log4cplus::WARN_LOG_LEVEL);
        return true;
    }
    // log4cplus itself would only print a line about a missing file and continue.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        complain(
            QStringLiteral("Cannot read the configuration '%1': %2").arg(path, file.errorString()));
        return false;
    }
    log4cplus::PropertyConfigurator::doConfigure(path.toLocal8Bit().toStdString());
    return true;
}

/// Prints what is wrong with a profile. One with warnings can be used.
std::optional<Vorn::Profile> readProfile(const QString &path)
{
    const Vorn::ParsedProfile parsed = Vorn::loadProfile(path);
    for (const Vorn::Diagnostic &diagnostic : parsed.diagnostics)
        std::cerr << qPrintable(diagnostic.toString()) << std::endl;
    if (Vorn::hasErrors(parsed.diagnostics))
        return std::nullopt;
    return parsed.profile;
}

void reload(ProfileInputHandler *input, const QString &path)
{
    if (path.isEmpty())
        complain(
            QStringLiteral("The key map is the one compiled in; there is none to read again."));
    else if (const auto profile = readProfile(path))
        input->setProfile(*profile);
    else
        complain(QStringLiteral("The key map that was read before stays in use."));
}

/// Has the signals wait in a descriptor for the event loop, instead of interrupting it anywhere.
/// Threads that are started before would get them nevertheless.
int watchSignals()
{
    sigset_t watched;
    sigemptyset(&watched);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&watched, signal);
    pthread_sigmask(SIG_BLOCK, &watched, nullptr);
    return signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK);
}

void printEvents(const QObject *context, bool timestamps)
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    Vorn::connect(Input::instance(), &Input::inputEvent, context,
                  [sinceStart, timestamps](const InputEvent &event) {
                      QString line = event.toString();
                      if (timestamps)
                          line.prepend(QStringLiteral("%1 ").arg(
                              static_cast<double>(sinceStart.elapsed()) / 1000, 8, 'f', 3));
                      // Flushed, so that the reader of a pipe sees it in time.
                      std::cout << qPrintable(line) << std::endl;
                  });
}

void reportWaiting()
{
    const QString reason = QDir(QStringLiteral("/dev/input")).exists()
        ? QStringLiteral("None of /dev/input/event0 to event9 is readable")
        : QStringLiteral("There is no /dev/input");
    complain(reason + QStringLiteral("; waiting for a device."));
}

} // namespace

int main(int argc, char *argv[])
{
    const int signalFd = watchSignals();
    if (signalFd < 0) {
        std::perror("signalfd");
        return exitFailed;
    }
    const log4cplus::Initializer logging;
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("player-profile"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PLAYER_VERSION));

    const ProfileOptions options = parseProfileOptions();
    if (!configureLogging(options.config))
        return exitFailed;
    const auto profile =
        options.profile.isEmpty() ? Vorn::toProfile(player) : readProfile(options.profile);
    if (!profile)
        return exitFailed;

    ProfileInputHandler input(*profile);
    const QSocketNotifier notifier(signalFd, QSocketNotifier::Read);
    Vorn::connect(&notifier, &QSocketNotifier::activated, &input, [&] {
        signalfd_siginfo signal = {};
        while (read(signalFd, &signal, sizeof signal) > 0) {
            if (signal.ssi_signo == SIGHUP)
                reload(&input, options.profile);
            else
                QCoreApplication::quit();
        }
    });
    printEvents(&application, options.timestamps);
    // Queued behind the library's first scan for devices.
    QTimer::singleShot(0, &input, [&input] {
        if (input.getDeviceNameMap().isEmpty())
            reportWaiting();
    });
    if (options.durationMs > 0)
        QTimer::singleShot(options.durationMs, Qt::PreciseTimer, &application,
                           &QCoreApplication::quit);
    return QCoreApplication::exec();
}
