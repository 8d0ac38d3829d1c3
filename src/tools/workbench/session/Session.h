#ifndef VORN_WORKBENCH_SESSION_H
#define VORN_WORKBENCH_SESSION_H

#include "Input.h"

#include <QString>
#include <QVector>

#include <optional>
#include <variant>

namespace Vorn::Workbench {

/// Begins a session.
struct SessionStart
{
    QString source; ///< "monitor", or the file that was simulated
    QString profile; ///< file name; empty without one
    qint64 wallClock = 0; ///< µs since the epoch at time 0
};

/// A device came or went.
struct DeviceChange
{
    QString device; ///< "/dev/input/event0"
    QString name; ///< the kernel's
    InputEvent::Bus bus = InputEvent::Bus::NoBus;
    bool added = true;
};

/// A record that the library read.
struct RecordRead
{
    QString device;
    int type = 0;
    int code = 0;
    int value = 0;
    qint64 stamp = 0; ///< its time stamp, µs since the epoch; 0: made by a request for positions
};

/// What the detectors of a key handler did, told from their answers.
struct DetectorStep
{
    enum class What {
        LongPressDue, ///< keys[0] is timed: due at `due`, noticed at the tick after it
        LongPressEnded, ///< keys[0] is no longer timed
        FirstKeyWithdrawn, ///< keys[0] was released by the detector, as a chord begins
        ChordFound, ///< the keys are down together; mapped or not, see `mapped`
        ChordReleased, ///< all keys of the chord are up
        Dropped, ///< the record of keys[0] was ignored: a third key, or a release without a press
    };

    What what = What::Dropped;
    QString device;
    QVector<int> keys;
    qint64 due = 0; ///< µs of the session; LongPressDue
    bool mapped = false; ///< whether a command is registered for the pair; ChordFound
};

/// An event on the bus.
struct EventPublished
{
    InputEvent::Command command = InputEvent::None;
    InputEvent::State state = InputEvent::NoState;
    InputEvent::Bus bus = InputEvent::Bus::NoBus;
    QString device; ///< empty if it is not known
    int type = 0; ///< EV_KEY or EV_SW: of which `codes` are; 0 if they are not known
    QVector<int> codes; ///< the key, both keys of a chord, or the switch that it comes from
    /// µs from the record's stamp, or from when the long press was due, to the publication.
    std::optional<qint64> latency;
};

/// An identifier was selected.
struct IdentifierSelected
{
    QString identifier;
};

/// An expectation of a scenario was met or failed.
struct ExpectationChecked
{
    QString file;
    int line = 0;
    QString text; ///< as it stands in the file
    bool met = true;
    QString found; ///< what came instead; empty if it was met
};

/// Something else that happened: a profile was reloaded, the clock was set.
struct Remark
{
    QString text;
};

/// One thing that happened, and when.
struct SessionEntry
{
    qint64 time = 0; ///< µs since the start of the session, by a clock that is never set
    std::variant<SessionStart, DeviceChange, RecordRead, DetectorStep, EventPublished,
                 IdentifierSelected, ExpectationChecked, Remark>
        what;
};

} // namespace Vorn::Workbench

#endif
