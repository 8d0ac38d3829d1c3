#ifndef MODEL_LIBRARYPROBE_H
#define MODEL_LIBRARYPROBE_H

#include "BasicInputHandler.h"
#include "KeyProcessing.h"

#include <QTimer>

namespace Vorn {

/// The library's friend in this program, which does not contain the workbench and its class of this
/// name. Gives access to the detectors that a handler keeps to itself.
class InputProbe
{
public:
    static LongPressDetect *longPress(BasicKeyInputHandler &handler)
    {
        return handler.longPressDetect;
    }
    static DoubleKeyDetect *chord(BasicKeyInputHandler &handler) { return handler.doubleKeyDetect; }
    static bool isHeld(BasicKeyInputHandler &handler, int code)
    {
        return handler.longPressDetect->keyData.contains(code);
    }
    static bool isMapped(BasicKeyInputHandler &handler, int code)
    {
        return handler.keyMap.contains(code);
    }
    static QTimer *timer(BasicKeyInputHandler &handler) { return handler.longPressDetect->timer; }
    static void tick(BasicKeyInputHandler &handler) { handler.longPressDetect->update(); }

    static QHash<int, LongPressDetect::KeyData> &holds(BasicKeyInputHandler &handler)
    {
        return handler.longPressDetect->keyData;
    }
    static QHash<int, int> &stages(BasicKeyInputHandler &handler)
    {
        return handler.longPressDetect->stages;
    }
    static QList<input_event> &stored(BasicKeyInputHandler &handler)
    {
        return handler.doubleKeyDetect->storedEvents;
    }
    static QList<input_event> &pending(BasicKeyInputHandler &handler)
    {
        return handler.doubleKeyDetect->pendingEvents;
    }
    static bool &isChord(BasicKeyInputHandler &handler)
    {
        return handler.doubleKeyDetect->detected;
    }
    static QHash<int, bool> &held(BasicKeyInputHandler &handler) { return handler.heldKeys; }
};

} // namespace Vorn

#endif
