// The player again, with a profile for its key map instead of code. The one from ../profiles is
// compiled in; --profile reads another one, and SIGHUP has it read again.

#include "PlayerProgram.h"
#include "ProfileInputHandler.h"
#include "ProfileReader.h"
#include "player.h"

#include <QCoreApplication>
#include <QTimer>

#include <log4cplus/initializer.h>

#include <csignal>
#include <iostream>
#include <memory>
#include <optional>

namespace {

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

} // namespace

int main(int argc, char *argv[])
{
    const log4cplus::Initializer logging;
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("player-profile"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PLAYER_VERSION));

    const PlayerOptions options = parsePlayerOptions(ProfileOption::IsOffered);
    if (!configureLogging(options.config))
        return exitFailed;
    const auto profile =
        options.profile.isEmpty() ? Vorn::toProfile(player) : readProfile(options.profile);
    if (!profile)
        return exitFailed;

    // Before the devices, so that no signal finds nobody to handle it.
    std::unique_ptr<ProfileInputHandler> input;
    const auto handleSignal = [&input, &options](int signal) {
        if (signal == SIGHUP)
            reload(input.get(), options.profile);
        else
            QCoreApplication::quit();
    };
    if (!onSignals({SIGINT, SIGTERM, SIGHUP}, &application, handleSignal))
        return exitFailed;
    input = std::make_unique<ProfileInputHandler>(*profile);
    printEvents(&application, options.timestamps);
    // Queued behind the library's first scan for devices.
    QTimer::singleShot(0, input.get(), [&input] {
        if (input->getDeviceNameMap().isEmpty())
            reportWaiting();
    });
    quitAfter(options.durationMs);
    return QCoreApplication::exec();
}
