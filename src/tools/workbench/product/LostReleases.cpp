#include "LostReleases.h"

#include "InputProbe.h"
#include "NodeInfo.h"
#include "Reasons.h"
#include "Session.h"

#include <poll.h>

namespace Vorn::Workbench {

namespace {

bool hasUnreadRecords(const LinuxInputListener &listener)
{
    pollfd node{InputProbe::descriptor(listener), POLLIN, 0};
    return ::poll(&node, 1, 0) > 0;
}

} // namespace

// The kernel loses records when a reader is slow, and reads of other programs take none away: it
// knows which keys are down.
QSet<int> tellLostReleases(SessionLog *log, const ObservedDevice &device,
                           const BasicKeyInputHandler &handler, const QSet<int> &told)
{
    const QList<input_event> stored = InputProbe::storedEvents(handler);
    const LinuxInputListener *listener = handler.listener();
    QSet<int> lost;
    if (!stored.isEmpty() && listener && !hasUnreadRecords(*listener)) {
        const NodeInfo node = readNode(device.path);
        for (const input_event &event : stored) {
            if (node.hasCodes && event.value != 0 && !node.device.keysDown.contains(event.code))
                lost += event.code;
        }
    }
    for (const input_event &event : stored) {
        if (!lost.contains(event.code) || told.contains(event.code))
            continue;
        const qint64 since = stampOf(event) - SessionLog::wallClock() + log->now();
        log->add(
            Remark{lostReleaseText(device.name, event.code, since, InputProbe::isChord(handler))});
    }
    return lost;
}

} // namespace Vorn::Workbench
