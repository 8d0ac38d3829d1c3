#include "QuickKeys.h"

#include <vorn/input/Input.h>

#include <linux/input.h>

void QuickKeys::addDevice(const QString &device, const QString &name)
{
    auto *keys = new BasicKeyInputHandler(name);
    addKeyHandler(device, keys, QString()); // which owns it from here on
    keys->registerKey(KEY_POWER, InputEvent::Power, true);
    keys->registerKey(KEY_VOLUMEDOWN, InputEvent::VolumeDown, true);
    keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
    for (const int code : {KEY_VOLUMEUP, KEY_VOLUMEDOWN})
        keys->enableLongPress(code, true, {600, 200});
    // Both may begin the chord, so they wait for their release.
    keys->registerKey(KEY_STOP, InputEvent::Stop, false);
    keys->registerKey(KEY_PLAY, InputEvent::StartPlay, false);
    keys->registerDoubleKey(KEY_STOP, KEY_PLAY, InputEvent::FactoryReset);
}
