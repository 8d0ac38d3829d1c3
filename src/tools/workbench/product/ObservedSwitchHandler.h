#ifndef VORN_WORKBENCH_OBSERVEDSWITCHHANDLER_H
#define VORN_WORKBENCH_OBSERVEDSWITCHHANDLER_H

#include "BasicInputHandler.h"
#include "Observation.h"
#include "Profile.h"

#include <QString>

namespace Vorn::Workbench {

/// The library's switch handler, which logs the records on their way into it.
class ObservedSwitchHandler : public BasicSwInputHandler
{
    Q_OBJECT

public:
    ObservedSwitchHandler(const QString &path, const QString &name, const Observation &observation);

    /// Registers what a profile says.
    void registerAll(const HandlerProfile &handlers);

    void setLogsRecords(bool logs) { m_observation.logsRecords = logs; }

    void processEvent(const QList<input_event> &events) override;

private:
    const QString m_device;
    Observation m_observation;
};

} // namespace Vorn::Workbench

#endif
