#include "Input.h"
#include "PlayerInput.h"
#include "vorn.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSocketNotifier>
#include <QTimer>

#include <log4cplus/configurator.h>
#include <log4cplus/initializer.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iostream>

namespace {

constexpr int exitUsage = 2;
constexpr int exitConfig = 1;
// Longer than any test or demo, and still an int in milliseconds.
constexpr int maxDurationSeconds = 24 * 60 * 60;

int signalPipe[2] = {-1, -1};

struct Options
{
    QString config;
    int durationMs = 0; ///< 0: until a signal arrives
    bool timestamps = false;
};

void complain(const QString &message)
{
    std::cerr << "player: " << qPrintable(message) << std::endl;
}

/// Only async-signal-safe calls are allowed here; the event loop does the rest.
void onSignal(int)
{
    const int savedErrno = errno;
    const char byte = 0;
    const ssize_t written = write(signalPipe[1], &byte, 1);
    Q_UNUSED(written)
    errno = savedErrno;
}

/// Quits the event loop of @p application on SIGINT and SIGTERM.
/// @return false with errno set if the system refuses
bool quitOnSignals(QCoreApplication *application)
{
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return false;
    auto *notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, application);
    Vorn::connect(notifier, &QSocketNotifier::activated, application, &QCoreApplication::quit);

    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    return sigaction(SIGINT, &action, nullptr) == 0 && sigaction(SIGTERM, &action, nullptr) == 0;
}

/// Reads the command line. Exits on --help, --version and errors.
Options parse()
{
    Options options;
    const QCommandLineOption config(
        QStringLiteral("config"),
        QStringLiteral("Read the log4cplus properties from <file> instead of player.properties "
                       "in the program's folder."),
        QStringLiteral("file"),
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("player.properties")));
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

    const auto refuse = [](const QString &reason) {
        complain(reason + QStringLiteral(" (see --help)"));
        std::exit(exitUsage);
    };
    if (!parser.parse(QCoreApplication::arguments()))
        refuse(parser.errorText());
    if (parser.isSet(help))
        parser.showHelp();
    if (parser.isSet(version))
        parser.showVersion();
    if (!parser.positionalArguments().isEmpty())
        refuse(
            QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().first()));

    if (parser.isSet(duration)) {
        bool isNumber = false;
        const double seconds = parser.value(duration).toDouble(&isNumber);
        // Written so that "nan" is refused as well.
        if (!isNumber || !(seconds >= 0.001 && seconds <= maxDurationSeconds)) {
            refuse(QStringLiteral("--duration takes 0.001 to %1 seconds, not '%2'.")
                       .arg(QString::number(maxDurationSeconds), parser.value(duration)));
        }
        options.durationMs = static_cast<int>(seconds * 1000);
    }
    options.config = parser.value(config);
    options.timestamps = parser.isSet(timestamps);
    return options;
}

/// Sets up the library's logging from a properties file.
/// @return false, with a line on stderr, if the file cannot be read
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

/// Prints each event on a line and flushes it, so that the reader of a pipe sees it in time.
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
                      std::cout << qPrintable(event.toString()) << std::endl;
                  });
}

/// Explains why nothing happens: no device is plugged in yet.
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
    const log4cplus::Initializer logging;
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("player"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PLAYER_VERSION));

    const Options options = parse();
    if (!configureLogging(options.config))
        return exitConfig;
    if (!quitOnSignals(&application)) {
        complain(QStringLiteral("Cannot handle signals: %1").arg(qt_error_string(errno)));
        return exitConfig;
    }

    PlayerInput input;
    printEvents(&application, options.timestamps);
    // Queued behind the library's first scan for devices.
    QTimer::singleShot(0, &input, [&input] {
        if (input.deviceCount() == 0)
            reportWaiting();
    });
    if (options.durationMs > 0)
        QTimer::singleShot(options.durationMs, Qt::PreciseTimer, &application,
                           &QCoreApplication::quit);
    return QCoreApplication::exec();
}
