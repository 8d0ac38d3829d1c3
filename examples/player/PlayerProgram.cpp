#include "PlayerProgram.h"

#include <vorn/core/vorn.h>
#include <vorn/input/Input.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSocketNotifier>
#include <QTimer>

#include <log4cplus/configurator.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iostream>

namespace {

constexpr int exitUsage = 2;
// Longer than any test or demo, and still an int in milliseconds.
constexpr int maxDurationSeconds = 24 * 60 * 60;

int signalPipe[2] = {-1, -1};

/// Only async-signal-safe calls are allowed here; the event loop does the rest.
void onSignal(int signal)
{
    const int savedErrno = errno;
    const char byte = static_cast<char>(signal);
    const ssize_t written = write(signalPipe[1], &byte, 1);
    Q_UNUSED(written)
    errno = savedErrno;
}

[[noreturn]] void refuse(const QString &reason)
{
    complain(reason + QStringLiteral(" (see --help)"));
    std::exit(exitUsage);
}

int toMilliseconds(const QString &value)
{
    bool isNumber = false;
    const double seconds = value.toDouble(&isNumber);
    // Written so that "nan" is refused as well.
    if (!isNumber || !(seconds >= 0.001 && seconds <= maxDurationSeconds)) {
        refuse(QStringLiteral("--duration takes 0.001 to %1 seconds, not '%2'.")
                   .arg(QString::number(maxDurationSeconds), value));
    }
    return static_cast<int>(seconds * 1000);
}

} // namespace

PlayerOptions parsePlayerOptions(ProfileOption profileOption)
{
    const QCommandLineOption config(
        QStringLiteral("config"),
        QStringLiteral("Read the log4cplus properties from <file> instead of player.properties "
                       "in the program's folder."),
        QStringLiteral("file"),
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("player.properties")));
    const QCommandLineOption profile(
        QStringLiteral("profile"),
        QStringLiteral("Read the key map from <file> instead of using the one compiled in, and "
                       "again on SIGHUP."),
        QStringLiteral("file"));
    const QCommandLineOption duration(
        QStringLiteral("duration"), QStringLiteral("Exit after this many seconds, e.g. 10 or 2.5."),
        QStringLiteral("seconds"));
    const QCommandLineOption timestamps(
        QStringLiteral("timestamps"),
        QStringLiteral("Print the seconds since the start before each event."));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Prints the player commands that come from the input devices, one event per line, until "
        "SIGINT or SIGTERM."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addOptions({config, duration, timestamps});
    if (profileOption == ProfileOption::IsOffered)
        parser.addOption(profile);

    if (!parser.parse(QCoreApplication::arguments()))
        refuse(parser.errorText());
    if (parser.isSet(help))
        parser.showHelp();
    if (parser.isSet(version))
        parser.showVersion();
    const QStringList unexpected = parser.positionalArguments();
    if (!unexpected.isEmpty())
        refuse(QStringLiteral("Unexpected argument '%1'.").arg(unexpected.first()));

    PlayerOptions options;
    options.config = parser.value(config);
    if (profileOption == ProfileOption::IsOffered && parser.isSet(profile)) {
        options.profile = parser.value(profile);
        if (options.profile.isEmpty())
            refuse(QStringLiteral("--profile takes the name of a file."));
    }
    if (parser.isSet(duration))
        options.durationMs = toMilliseconds(parser.value(duration));
    options.timestamps = parser.isSet(timestamps);
    return options;
}

void complain(const QString &message)
{
    std::cerr << qPrintable(QCoreApplication::applicationName()) << ": " << qPrintable(message)
              << std::endl;
}

bool configureLogging(const QString &path)
{
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

bool onSignals(std::initializer_list<int> numbers, QObject *context,
               const std::function<void(int signal)> &handle)
{
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    bool isWatching = pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) == 0;
    if (isWatching) {
        auto *notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, context);
        Vorn::connect(notifier, &QSocketNotifier::activated, context, [handle] {
            char signal = 0;
            while (read(signalPipe[0], &signal, 1) == 1)
                handle(signal);
        });
        for (const int number : numbers)
            isWatching = isWatching && sigaction(number, &action, nullptr) == 0;
    }
    if (!isWatching)
        complain(QStringLiteral("Cannot handle signals: %1").arg(qt_error_string(errno)));
    return isWatching;
}

void printEvents(const QObject *context, bool timestamps)
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    Vorn::connect(Input::instance(), &Input::inputEvent, context,
                  [sinceStart, timestamps](const InputEvent &event) {
                      if (timestamps) {
                          const double seconds = static_cast<double>(sinceStart.elapsed()) / 1000;
                          std::cout
                              << qPrintable(QString::number(seconds, 'f', 3).rightJustified(8))
                              << ' ';
                      }
                      // Flushed, so that the reader of a pipe sees it in time.
                      std::cout << qPrintable(event.toString()) << std::endl;
                  });
}

void reportWaiting()
{
    const QString reason = QDir(QStringLiteral("/dev/input")).exists()
        ? QStringLiteral("None of /dev/input/event0 to event9 is readable")
        : QStringLiteral("There is no /dev/input");
    complain(reason + QStringLiteral("; waiting for a device."));
}

void quitAfter(int durationMs)
{
    if (durationMs > 0)
        QTimer::singleShot(durationMs, Qt::PreciseTimer, QCoreApplication::instance(),
                           &QCoreApplication::quit);
}
