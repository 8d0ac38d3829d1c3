#include "BenchProduct.h"

#include <QEventLoop>
#include <QTimer>

#include <linux/input.h>

#include <stdexcept>
#include <string>

namespace Vorn::Bench {

void BenchProduct::addDevice(const QString &device, const QString &name)
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

void BenchProduct::removeDevice(const QString &device)
{
    --deviceCount;
    BasicInputHandler::removeDevice(device);
}

void waitForFirstPass()
{
    // Queued behind the pass, which the manager's constructor has queued.
    QEventLoop loop;
    QTimer::singleShot(0, &loop, &QEventLoop::quit);
    loop.exec();
}

void requireDevices(const BenchProduct &product, int count)
{
    if (product.deviceCount != count) {
        throw std::runtime_error("the library found " + std::to_string(product.deviceCount) + " of "
                                 + std::to_string(count) + " devices");
    }
}

} // namespace Vorn::Bench
