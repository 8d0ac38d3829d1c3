#include <vorn/core/vorn.h>
#include <vorn/input/BasicInputHandler.h>
#include <vorn/input/Input.h>
#include <vorn/input/KeyProcessing.h>
#include <vorn/input/LinuxInputListener.h>

#include <QCoreApplication>

#include <cstdio>

namespace {

class Devices : public BasicInputHandler
{
    void addDevice(const QString &, const QString &) override { }
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    Devices devices;
    QString published;
    Vorn::connect(Input::instance(), &Input::inputEvent, &application,
                  [&published](const InputEvent &event) { published = event.toString(); });
    BasicKeyInputHandler keys(QStringLiteral("panel"));
    keys.registerKey(KEY_MUTE, InputEvent::Mute, true);
    input_event press = {};
    press.type = EV_KEY;
    press.code = KEY_MUTE;
    press.value = 1;
    keys.processEvent({press});
    std::printf("%s\n", qPrintable(published));
    return published == QLatin1String("[cmd=Mute, state=KeyPressed]") ? 0 : 1;
}
