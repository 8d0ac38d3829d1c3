// What a map of keys costs where it is read, registered and exchanged. Nothing of it is on the path
// of a record.

#include "Measure.h"

#include "InputSubsystem.h"
#include "ProfileInputHandler.h"
#include "ProfileReader.h"

#include <QCoreApplication>

#include <cstdlib>
#include <iostream>

namespace {

using Vorn::Sim::DeviceDescription;

/// A handler has each key once, so large maps have several handlers.
constexpr int keysPerHandler = 200;

/// A profile of @p count keys, every fourth with a long press.
/// @param command of the keys
QByteArray profileText(int count, const char *command)
{
    QByteArray text("[[device]]\nname = \"panel\"\n");
    for (int i = 0; i < count; ++i) {
        if (i % keysPerHandler == 0) {
            text += "\n[[device.handler]]\nidentifiers = [\"mode" + QByteArray::number(i)
                + "\"]\n[device.handler.keys]\n";
        }
        const QByteArray code = QByteArray::number(1 + i % keysPerHandler);
        text += code + " = { command = \"" + command + "\", immediate = true"
            + (i % 4 == 0 ? ", long-press = [600, 200], repeat = true }\n" : " }\n");
    }
    return text;
}

Vorn::Profile profileOf(int count, const char *command)
{
    const Vorn::ParsedProfile parsed =
        Vorn::parseProfile(profileText(count, command), QStringLiteral("panel.toml"));
    // A map with mistakes would be read in no time.
    if (Vorn::hasErrors(parsed.diagnostics)) {
        std::cerr << qPrintable(parsed.diagnostics.first().toString()) << std::endl;
        std::abort();
    }
    return parsed.profile;
}

int keysOf(const benchmark::State &state)
{
    return static_cast<int>(state.range(0));
}

void readProfile(benchmark::State &state)
{
    const QByteArray text = profileText(keysOf(state), "Confirm");
    profileOf(keysOf(state), "Confirm");
    measure(state, "map", 1, [&text] {
        benchmark::DoNotOptimize(Vorn::parseProfile(text, QStringLiteral("panel.toml")));
    });
}
BENCHMARK(readProfile)
    ->Name("Profile/read")
    ->ArgName("keys")
    ->Arg(20)
    ->Arg(200)
    ->Arg(2000)
    ->Unit(benchmark::kMicrosecond);

/// A device that arrives and goes, without what the library does about its node.
void registerProfile(benchmark::State &state)
{
    const Logging logging(Log::Off);
    ProfileInputHandler devices(profileOf(keysOf(state), "Confirm"));
    const QString path = QStringLiteral("/dev/input/event0");
    measure(state, "map", 1, [&devices, &path] {
        devices.addDevice(path, QStringLiteral("panel"));
        devices.removeDevice(path);
    });
}
BENCHMARK(registerProfile)
    ->Name("Profile/register and remove")
    ->ArgName("keys")
    ->Arg(20)
    ->Arg(200)
    ->Arg(2000)
    ->Unit(benchmark::kMicrosecond);

/// A profile in which every key differs, exchanged for a device that is present.
void reloadProfile(benchmark::State &state)
{
    const Logging logging(Log::Off);
    Vorn::Sim::InputSubsystem subsystem;
    subsystem.setRecording(false);
    subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK}));
    const Vorn::Profile profiles[] = {profileOf(keysOf(state), "Confirm"),
                                      profileOf(keysOf(state), "Cancel")};
    ProfileInputHandler devices(profiles[0]);
    QCoreApplication::processEvents();
    int next = 1;
    measure(state, "map", 1, [&] {
        devices.setProfile(profiles[next]);
        next = 1 - next;
        while (devices.isReloadPending())
            QCoreApplication::processEvents();
    });
}
BENCHMARK(reloadProfile)
    ->Name("Profile/reload")
    ->ArgName("keys")
    ->Arg(20)
    ->Arg(200)
    ->Arg(2000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
