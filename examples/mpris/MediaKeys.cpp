#include "MediaKeys.h"

#include <vorn/input/Input.h>

#include <linux/input.h>

void MediaKeys::addDevice(const QString &device, const QString &name)
{
    auto *keys = new BasicKeyInputHandler(name);
    addKeyHandler(device, keys, QString()); // which owns it from here on
    for (const int code : {KEY_PLAY, KEY_PLAYPAUSE})
        keys->registerKey(code, InputEvent::StartPlay, true);
    for (const int code : {KEY_PAUSE, KEY_PAUSECD})
        keys->registerKey(code, InputEvent::Pause, true);
    keys->registerKey(KEY_STOPCD, InputEvent::Stop, true);
    keys->registerKey(KEY_NEXTSONG, InputEvent::Next, true);
    keys->registerKey(KEY_PREVIOUSSONG, InputEvent::Previous, true);
    keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
    keys->registerKey(KEY_VOLUMEDOWN, InputEvent::VolumeDown, true);
    for (const int code : {KEY_VOLUMEUP, KEY_VOLUMEDOWN})
        keys->enableLongPress(code, true, {600, 200});
}
