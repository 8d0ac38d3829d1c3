#ifndef VORN_WORKBENCH_SESSIONPRINTER_H
#define VORN_WORKBENCH_SESSIONPRINTER_H

#include "KnownDevices.h"
#include "Session.h"

#include <QSet>
#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// Renders a session as text for people, in lines of up to 80 columns, whether they go to a
/// terminal or a pipe:
///
/// ```
///    1.500  front-panel KEY_VOLUMEUP press
///    1.500      VolumeUp press          front-panel  KEY_VOLUMEUP  +0.3 ms
/// ```
///
/// What the library makes of a record is indented below it if records are shown. A device's name
/// loses its middle where it has to; anything else that is too long goes on in the next line.
class SessionPrinter
{
public:
    static constexpr int width = 80;

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

    /// The text of an entry, without the last line end; empty for an entry that is not shown.
    /// Devices are known from earlier entries.
    QString line(const SessionEntry &entry);

    void setRecords(bool shown) { m_options.records = shown; }
    bool records() const { return m_options.records; }

private:
    bool isNews(const RecordOutcome &outcome);

    Options m_options;
    KnownDevices m_devices;
    std::optional<RecordRead> m_lastRecord; ///< that was shown
    QSet<QString> m_told; ///< what need not be said of every record of a device
};

} // namespace Vorn::Workbench

#endif
