#include "ProductInput.h"

#include <linux/input.h>

namespace {

const QLatin1String identifier("main");

} // namespace

ProductInput::ProductInput()
{
    selectHandler(identifier);
}

void ProductInput::addDevice(const QString &device, const QString &name)
{
    auto *keys = new BasicKeyInputHandler(name);
    keys->registerKey(KEY_INFO, InputEvent::Info, true);
    keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
    keys->enableLongPress(KEY_VOLUMEUP, true, {700, 600});
    addKeyHandler(device, keys, identifier);
}
