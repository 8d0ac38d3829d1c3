#ifndef VORN_WORKBENCH_OBSERVEDKEYHANDLER_H
#define VORN_WORKBENCH_OBSERVEDKEYHANDLER_H

#include "BasicInputHandler.h"
#include "KeyProcessing.h"
#include "LongPressMirror.h"
#include "Observation.h"
#include "Profile.h"
#include "Session.h"

#include <QString>
#include <QVector>

namespace Vorn::Workbench {

/// The library's key handler, which logs the records on their way into it and what its detectors
/// make of them.
///
/// The handler's own detectors are out of reach. What they do is learnt from a second chord
/// detector that gets the same records, and from LongPressMirror.
class ObservedKeyHandler : public BasicKeyInputHandler
{
    Q_OBJECT

public:
    ObservedKeyHandler(const QString &path, const QString &name, const Observation &observation);

    /// Registers what a profile says. A listener must be attached.
    void registerAll(const HandlerProfile &handlers);

    void setLogsRecords(bool logs) { m_observation.logsRecords = logs; }

    LongPressMirror &longPresses() { return m_longPresses; }

    void invalidate() override;
    void processEvent(const QList<input_event> &events) override;

private:
    void registerKeyMapping(const KeyMapping &key);
    void onKeyDoubleDetect(const QList<input_event> &keys, bool fake);
    void onChord(const QList<input_event> &keys);
    void log(DetectorStep::What what, const QVector<int> &keys, bool isMapped = false);
    void logLongPress(DetectorStep::What what, int code, qint64 due);

    const QString m_device;
    Observation m_observation;
    LongPressMirror m_longPresses;
    DoubleKeyDetect m_doubleKeyDetect;
    QVector<int> m_chord; ///< the keys of the chord in progress
    bool m_isAnswered = false; ///< whether the chord detector has answered the present record
};

} // namespace Vorn::Workbench

#endif
