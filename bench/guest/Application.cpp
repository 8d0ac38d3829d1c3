#include "Setup.h"

#include "UinputDevice.h"

#include <QAbstractEventDispatcher>
#include <QDir>
#include <QEventLoop>
#include <QTimer>

#include <log4cplus/consoleappender.h>
#include <log4cplus/logger.h>

#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace Vorn::Bench {

namespace {

const char *const expediteFile = "/sys/kernel/rcu_expedited";

bool expedite(const char *value)
{
    std::ofstream file(expediteFile);
    return static_cast<bool>(file << value << std::flush);
}

} // namespace

Application::Application()
{
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.addAppender(log4cplus::SharedAppenderPtr(new log4cplus::ConsoleAppender(true, true)));
    root.setLogLevel(log4cplus::WARN_LOG_LEVEL);

    const bool isGlib = QAbstractEventDispatcher::instance()->inherits("QEventDispatcherGlib");
    if (isGlib != (dispatcher() == "glib"))
        throw std::runtime_error("this Qt does not have the dispatcher " + dispatcher());
}

void Product::addDevice(const QString &device, const QString &name)
{
    ++deviceCount;
    auto *keys = new BasicKeyInputHandler(name);
    addKeyHandler(device, keys, QString());
    keys->registerKey(KEY_OK, InputEvent::Confirm, true);
    keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
    keys->enableLongPress(KEY_VOLUMEUP, true, {600, 200});
    auto *jacks = new BasicSwInputHandler(name);
    addSwitchHandler(device, jacks, QString());
    jacks->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
}

void Product::removeDevice(const QString &device)
{
    --deviceCount;
    BasicInputHandler::removeDevice(device);
}

void useDispatcher(const std::string &name)
{
    if (name == "glib")
        qunsetenv("QT_NO_GLIB");
    else
        qputenv("QT_NO_GLIB", "1");
}

std::string dispatcher()
{
    return qEnvironmentVariableIsSet("QT_NO_GLIB") ? "unix" : "glib";
}

void requireUinput()
{
    if (::access("/dev/uinput", R_OK | W_OK) != 0) {
        throw std::system_error(errno, std::generic_category(),
                                "no devices can be made, /dev/uinput is needed");
    }
}

void requireNoDevices()
{
    const QDir folder(QStringLiteral("/dev/input"));
    if (!folder.entryList({QStringLiteral("event*")}, QDir::System).isEmpty()) {
        throw std::runtime_error(
            "an input device is present; this is measured in a guest of its own");
    }
}

Expedition::Expedition(bool isWanted)
    : m_isWanted(isWanted)
{
    if (m_isWanted && !expedite("1"))
        throw std::runtime_error(std::string("cannot write ") + expediteFile);
}

Expedition::~Expedition()
{
    if (m_isWanted)
        expedite("0");
}

std::string Expedition::parameter(const std::string &text) const
{
    return m_isWanted ? text + " rcu_expedited" : text;
}

std::unique_ptr<UinputDevice> makeDevice()
{
    return std::make_unique<UinputDevice>(UinputDescription{
        "bench-panel", BUS_HOST, {KEY_OK, KEY_STOP, KEY_VOLUMEUP}, {SW_LINEIN_INSERT}});
}

std::vector<std::unique_ptr<UinputDevice>> makeDevices(int count)
{
    std::vector<std::unique_ptr<UinputDevice>> devices;
    devices.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        devices.push_back(makeDevice());
    return devices;
}

void waitForFirstPass()
{
    // Queued behind the one that the manager has queued.
    QEventLoop loop;
    QTimer::singleShot(0, &loop, &QEventLoop::quit);
    loop.exec();
}

void requireDevices(const Product &product, int count)
{
    if (product.deviceCount != count) {
        throw std::runtime_error("the library has found " + std::to_string(product.deviceCount)
                                 + " devices of " + std::to_string(count));
    }
}

double microsecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
        .count();
}

} // namespace Vorn::Bench
