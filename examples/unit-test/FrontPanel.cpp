#include "FrontPanel.h"

#include <vorn/input/Input.h>

#include <linux/input.h>

void FrontPanel::addDevice(const QString &device, const QString &name)
{
    auto *keys = new BasicKeyInputHandler(name);
    addKeyHandler(device, keys, QString()); // which owns it from here on

    // Louder at once, and louder still for as long as the key is held.
    keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
    keys->enableLongPress(KEY_VOLUMEUP, true, {600, 400});

    // Both may begin the chord, so they are reported on the release, unless it came about.
    keys->registerKey(KEY_STOP, InputEvent::Stop, false);
    keys->registerKey(KEY_PLAY, InputEvent::StartPlay, false);
    keys->registerDoubleKey(KEY_STOP, KEY_PLAY, InputEvent::FactoryReset);

    // Nobody's USB keyboard switches the product off. The bus is known since addKeyHandler().
    keys->registerKey(KEY_POWER, InputEvent::Bus::LocalUI, InputEvent::Power, false);

    auto *jacks = new BasicSwInputHandler(name);
    jacks->registerSwitch(SW_HEADPHONE_INSERT, InputEvent::SWLineOut);
    addSwitchHandler(device, jacks, QString());
    jacks->getInputStatus(); // a plug may be in already
}
