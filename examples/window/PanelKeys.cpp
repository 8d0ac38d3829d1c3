#include "PanelKeys.h"

void PanelKeys::addDevice(const QString &device, const QString &name)
{
    auto *keys = new BasicKeyInputHandler(name);
    addKeyHandler(device, keys, QString()); // which owns it from here on
    for (const PanelKey &key : panelKeys) {
        // Stop and Play may begin the chord, so they wait for their release.
        const bool isImmediate = key.code != KEY_STOP && key.code != KEY_PLAY;
        keys->registerKey(key.code, key.command, isImmediate);
    }
    for (const int code : {KEY_VOLUMEUP, KEY_VOLUMEDOWN})
        keys->enableLongPress(code, true, {600, 200});
    keys->registerDoubleKey(KEY_STOP, KEY_PLAY, InputEvent::FactoryReset);
}
