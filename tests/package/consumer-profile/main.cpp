// A product that reads its key map: consumer-profile PROFILE

#include <vorn/core/vorn.h>
#include <vorn/profile/Diagnostic.h>
#include <vorn/profile/Profile.h>
#include <vorn/profile/ProfileData.h>
#include <vorn/profile/ProfileInputHandler.h>
#include <vorn/profile/ProfileReader.h>
// By their bare names, too.
#include "ProfileInputHandler.h"
#include "ProfileReader.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

class Devices : public ProfileInputHandler
{
public:
    using ProfileInputHandler::ProfileInputHandler;

    BasicKeyInputHandler *keys = nullptr;

protected:
    BasicKeyInputHandler *createKeyHandler(const QString &device, const QString &name) override
    {
        return keys = ProfileInputHandler::createKeyHandler(device, name);
    }
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc != 2)
        return 2;
    const Vorn::ParsedProfile parsed = Vorn::loadProfile(QString::fromLocal8Bit(argv[1]));
    for (const Vorn::Diagnostic &diagnostic : parsed.diagnostics)
        std::printf("%s\n", qPrintable(diagnostic.toString()));
    if (Vorn::hasErrors(parsed.diagnostics))
        return 1;
    Devices devices(parsed.profile);
    QString published;
    Vorn::connect(Input::instance(), &Input::inputEvent, &application,
                  [&published](const InputEvent &event) { published = event.toString(); });
    // As if it had been plugged in: the library would call this from its event loop.
    devices.addDevice(QStringLiteral("/dev/input/event0"), QStringLiteral("panel"));
    if (!devices.keys)
        return 3;
    input_event press = {};
    press.type = EV_KEY;
    press.code = KEY_MUTE;
    press.value = 1;
    devices.keys->processEvent({press});
    std::printf("%s\n", qPrintable(published));
    return published == QLatin1String("[cmd=Mute, state=KeyPressed]") ? 0 : 4;
}
