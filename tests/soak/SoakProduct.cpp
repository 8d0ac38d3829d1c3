#include "SoakProduct.h"

void SoakProduct::addDevice(const QString &device, const QString &name)
{
    auto *keys = new BasicKeyInputHandler(name);
    addKeyHandler(device, keys, menu());
    keys->registerKey(immediateKey, InputEvent::Confirm, true);
    keys->registerKey(deferredKey, InputEvent::Context, false);
    keys->registerKey(timedKey, InputEvent::VolumeUp, true);
    keys->enableLongPress(timedKey, true, {600, 200});
    keys->registerKey(chordKeys[0], InputEvent::Previous, false);
    keys->registerKey(chordKeys[1], InputEvent::Next, false);
    keys->registerDoubleKey(chordKeys[0], chordKeys[1], InputEvent::FactoryReset);

    auto *texts = new BasicKeyInputHandler(name);
    addKeyHandler(device, texts, text());
    texts->registerKey(immediateKey, InputEvent::Submit, true);

    for (const QString &id : {menu(), text()}) {
        auto *switches = new BasicSwInputHandler(name);
        addSwitchHandler(device, switches, id);
        switches->registerSwitch(jack, InputEvent::SWLineIn);
    }
}
