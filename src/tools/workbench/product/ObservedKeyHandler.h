#ifndef VORN_WORKBENCH_OBSERVEDKEYHANDLER_H
#define VORN_WORKBENCH_OBSERVEDKEYHANDLER_H

#include "BasicInputHandler.h"
#include "KeyObserver.h"
#include "Observation.h"
#include "Session.h"

#include <functional>

namespace Vorn::Workbench {

/// The library's key handler, with everything logged that happens to it and in it.
class ObservedKeyHandler : public BasicKeyInputHandler
{
    Q_OBJECT

public:
    /// Why a code has no command now.
    using Unmapped = std::function<QString(int code)>;

    ObservedKeyHandler(const ObservedDevice &seen, Observation *observation,
                       const Unmapped &unmapped);

    void invalidate() override;
    void processEvent(const QList<input_event> &events) override;

    /// What the library believes about the device's keys.
    KeyStates states() const { return m_observer.states(); }

    /// Logs that nothing is timed any more: the handler is about to go.
    void endTiming() { m_observer.endTiming(); }

Q_SIGNALS:
    /// A record was treated as if other keys were down, which may have come up unheard.
    void otherKeysMattered();

private:
    KeyObserver m_observer;
};

} // namespace Vorn::Workbench

#endif
