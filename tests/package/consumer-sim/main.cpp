// A product's test: a key of a simulated device, held for three seconds of virtual time.

#include <vorn/core/vorn.h>
#include <vorn/input/BasicInputHandler.h>
#include <vorn/input/Input.h>
#include <vorn/sim/InputSubsystem.h>
#include <vorn/sim/VirtualClock.h>

#include <QCoreApplication>
#include <QStringList>

#include <chrono>
#include <cstdio>

namespace {

class Devices : public BasicInputHandler
{
    void addDevice(const QString &device, const QString &name) override
    {
        auto *keys = new BasicKeyInputHandler(name);
        addKeyHandler(device, keys, QString());
        keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
        keys->enableLongPress(KEY_VOLUMEUP, true, {1000});
    }
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    Vorn::Sim::InputNode &panel = subsystem.plug(
        0, Vorn::Sim::DeviceDescription::keyboard("panel", BUS_HOST, {KEY_VOLUMEUP}));

    QStringList events;
    Vorn::connect(Input::instance(), &Input::inputEvent, &application,
                  [&events](const InputEvent &event) { events.append(event.toString()); });
    Devices devices;
    clock.advance(std::chrono::milliseconds(10));
    panel.press(KEY_VOLUMEUP);
    clock.advance(std::chrono::milliseconds(3100));
    panel.release(KEY_VOLUMEUP);
    clock.advance(std::chrono::milliseconds(10));

    std::printf("%s\n", qPrintable(events.join(QLatin1Char('\n'))));
    const int presses = 1, longPresses = 3, releases = 1;
    return events.size() == presses + longPresses + releases ? 0 : 1;
}
