#include "PlayerInput.h"
#include "PlayerProgram.h"

#include <QCoreApplication>
#include <QTimer>

#include <log4cplus/initializer.h>

#include <csignal>

int main(int argc, char *argv[])
{
    const log4cplus::Initializer logging;
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("player"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PLAYER_VERSION));

    const PlayerOptions options = parsePlayerOptions(ProfileOption::IsUnknown);
    if (!configureLogging(options.config))
        return exitFailed;
    if (!onSignals({SIGINT, SIGTERM}, &application, [](int) { QCoreApplication::quit(); }))
        return exitFailed;

    PlayerInput input;
    printEvents(&application, options.timestamps);
    // Queued behind the library's first scan for devices.
    QTimer::singleShot(0, &input, [&input] {
        if (input.deviceCount() == 0)
            reportWaiting();
    });
    quitAfter(options.durationMs);
    return QCoreApplication::exec();
}
