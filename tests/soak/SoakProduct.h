#ifndef SOAKPRODUCT_H
#define SOAKPRODUCT_H

#include "BasicInputHandler.h"

/// A product that uses all that the library has: an immediate key, a deferred one, a timed one, a
/// chord, a switch, and on the panel two maps of keys to select from.
class SoakProduct : public BasicInputHandler
{
public:
    static constexpr int immediateKey = KEY_OK;
    static constexpr int deferredKey = KEY_MENU;
    static constexpr int timedKey = KEY_VOLUMEUP;
    static constexpr int chordKeys[2] = {KEY_A, KEY_B};
    static constexpr int jack = SW_LINEIN_INSERT;

    static QString menu() { return {}; }
    static QString text() { return QStringLiteral("text"); }

    void addDevice(const QString &device, const QString &name) override;
};

#endif
