#include "ProfileOptions.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdlib>
#include <iostream>

namespace {

constexpr int exitUsage = 2;
constexpr double maxSeconds = 24 * 60 * 60;

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
    if (!isNumber || !(seconds >= 0.001 && seconds <= maxSeconds)) {
        refuse(QStringLiteral("--duration takes 0.001 to %1 seconds, not '%2'.")
                   .arg(QString::number(maxSeconds), value));
    }
    return static_cast<int>(seconds * 1000);
}

} // namespace

ProfileOptions parseProfileOptions()
{
    const QCommandLineOption config(
        QStringLiteral("config"),
        QStringLiteral("Read log4cplus properties from <file>; without, warnings go to stderr."),
        QStringLiteral("file"));
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
    parser.addOptions({config, profile, duration, timestamps});

    if (!parser.parse(QCoreApplication::arguments()))
        refuse(parser.errorText());
    if (parser.isSet(help))
        parser.showHelp();
    if (parser.isSet(version))
        parser.showVersion();
    const QStringList unexpected = parser.positionalArguments();
    if (!unexpected.isEmpty())
        refuse(QStringLiteral("Unexpected argument '%1'.").arg(unexpected.first()));
    if (parser.isSet(profile) && parser.value(profile).isEmpty())
        refuse(QStringLiteral("--profile takes the name of a file."));

    return {parser.value(config), parser.value(profile),
            parser.isSet(duration) ? toMilliseconds(parser.value(duration)) : 0,
            parser.isSet(timestamps)};
}

void complain(const QString &message)
{
    std::cerr << qPrintable(QCoreApplication::applicationName()) << ": " << qPrintable(message)
              << std::endl;
}
