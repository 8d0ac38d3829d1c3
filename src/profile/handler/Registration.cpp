#include "Registration.h"

namespace Vorn {

namespace {

void registerKey(const KeyMapping &key, BasicKeyInputHandler *handler)
{
    if (key.bus)
        handler->registerKey(key.code, *key.bus, key.command, key.immediate);
    else
        handler->registerKey(key.code, key.command, key.immediate);
    if (!key.longPress)
        return;
    const LongPress &press = *key.longPress;
    if (key.bus)
        handler->enableLongPress(key.code, *key.bus, press.repeat, press.timeouts);
    else
        handler->enableLongPress(key.code, press.repeat, press.timeouts);
}

} // namespace

void registerKeys(const HandlerProfile &profile, BasicKeyInputHandler *handler)
{
    for (const KeyMapping &key : profile.keys)
        registerKey(key, handler);
    for (const ChordMapping &chord : profile.chords) {
        if (chord.bus)
            handler->registerDoubleKey(chord.first, chord.second, *chord.bus, chord.command);
        else
            handler->registerDoubleKey(chord.first, chord.second, chord.command);
    }
}

void registerSwitches(const HandlerProfile &profile, BasicSwInputHandler *handler)
{
    for (const SwitchMapping &mapping : profile.switches)
        handler->registerSwitch(mapping.code, mapping.command);
}

} // namespace Vorn
