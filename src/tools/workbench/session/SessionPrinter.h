#ifndef VORN_WORKBENCH_SESSIONPRINTER_H
#define VORN_WORKBENCH_SESSIONPRINTER_H

#include "Session.h"

#include <QHash>
#include <QString>

namespace Vorn::Workbench {

/// Renders a session as text for people, one line for each entry that is shown:
///
/// ```
///    1.500  KEY_VOLUMEUP press     │
///    1.500                         │ [cmd=VolumeUp, state=KeyPressed, bus=LocalUI]  front-panel
///    KEY_VOLUMEUP  +0.3 ms
/// ```
///
/// Records are in the left column, which is absent unless they are shown.
class SessionPrinter
{
public:
    struct Options
    {
        bool records = false; ///< the records that were read, beside the events
        bool detectors = false; ///< what the detectors did
        bool outcomes = false; ///< why a record published nothing
        bool latency = false; ///< how late an event was published
        bool coloured = false;
        int indent = 0;
    };

    explicit SessionPrinter(const Options &options);

    /// The line without its line end, or an empty string for an entry that is not shown. Device
    /// names are known from earlier entries.
    QString line(const SessionEntry &entry);

    void setRecords(bool shown) { m_options.records = shown; }
    bool records() const { return m_options.records; }

private:
    Options m_options;
    QHash<QString, QString> m_names;
};

} // namespace Vorn::Workbench

#endif
