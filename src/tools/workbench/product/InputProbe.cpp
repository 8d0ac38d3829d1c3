#include "InputProbe.h"

namespace Vorn {

QMap<int, InputProbe::Timing> InputProbe::timings(const BasicKeyInputHandler &handler)
{
    const LongPressDetect &detector = *handler.longPressDetect;
    QMap<int, Timing> timings;
    for (auto it = detector.keyData.cbegin(); it != detector.keyData.cend(); ++it) {
        const LongPressDetect::Event event = detector.events.value(it.key());
        const int stage = detector.stages.value(it.key(), 0);
        Timing timing{it->count, {}};
        // Out of range only if the registration went away during the hold, which the next tick
        // does not survive.
        const bool isEmitted = it->count == 1 || event.repeat;
        if (isEmitted && stage < event.timeouts.size())
            timing.due = it->time.toMSecsSinceEpoch() + event.timeouts.at(stage);
        timings.insert(it.key(), timing);
    }
    return timings;
}

LinuxInputListener *InputProbe::keyListener(const BasicInputHandler &manager, const QString &path)
{
    return manager.keyListeners.value(path);
}

LinuxInputListener *InputProbe::switchListener(const BasicInputHandler &manager,
                                               const QString &path)
{
    return manager.switchListeners.value(path);
}

} // namespace Vorn
