#include "ObservedKeyHandler.h"

namespace Vorn::Workbench {

ObservedKeyHandler::ObservedKeyHandler(const ObservedDevice &seen, Observation *observation,
                                       const Unmapped &unmapped)
    : BasicKeyInputHandler(seen.name)
    , m_observer(this, seen, observation, {unmapped, [this] { Q_EMIT otherKeysMattered(); }})
{ }

void ObservedKeyHandler::invalidate()
{
    m_observer.invalidate([this] { BasicKeyInputHandler::invalidate(); });
}

void ObservedKeyHandler::processEvent(const QList<input_event> &events)
{
    m_observer.processEvent(events, [this](const QList<input_event> &passed) {
        BasicKeyInputHandler::processEvent(passed);
    });
}

} // namespace Vorn::Workbench
