#ifndef VORN_WORKBENCH_SCENARIO_H
#define VORN_WORKBENCH_SCENARIO_H

#include "Input.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>
#include <variant>

namespace Vorn::Workbench {

/// A device that a scenario declares. What it does not say is left to the simulation: codes that
/// are absent come from the profile and from the steps.
struct ScenarioDevice
{
    QString label; ///< what the steps call it
    std::optional<QByteArray> name; ///< the kernel's; absent: the label, or the recording's
    std::optional<int> bus; ///< the kernel's; absent: that of a front panel, or the recording's
    std::optional<int> node; ///< N of /dev/input/eventN; absent: the lowest that is free
    std::optional<QVector<int>> keys;
    std::optional<QVector<int>> switches;
    QVector<int> usedKeys; ///< that steps mention
    QVector<int> usedSwitches;
    QVector<int> held; ///< keys that are down whenever it is plugged in
    QVector<int> on; ///< switches, likewise
    bool autoRepeat = false; ///< the kernel's
    QString recording; ///< file whose description it takes; empty: none
    int line = 0; ///< where it is declared
    QString file;
};

/// What a step does. Devices are indices into Scenario::devices, times are milliseconds.
namespace Step {

struct Plug
{
    int device = 0;
};

struct Unplug
{
    int device = 0;
    bool losingRecords = false; ///< what is unread by then never arrives
};

/// Another device on the same node, between two looks of the library.
struct Replace
{
    int device = 0;
    QByteArray name;
    std::optional<int> bus; ///< absent: as before
};

/// Whether the node can be opened.
struct Permit
{
    int device = 0;
    bool readable = true;
};

/// Keys that change in one packet.
struct Keys
{
    int device = 0;
    QVector<int> codes;
    int value = 0; ///< 1 press, 0 release, 2 repeat
};

struct Switch
{
    int device = 0;
    int code = 0;
    bool on = false;
};

/// A record as it is, in a read of its own.
struct Record
{
    int device = 0;
    int type = 0;
    int code = 0;
    int value = 0;
    qint64 offset = 0; ///< of its stamp from the wall clock
};

struct Wait
{
    qint64 duration = 0;
};

/// Waits until all recordings are played.
struct WaitForEnd
{ };

struct StepClock
{
    qint64 delta = 0;
};

struct Select
{
    QString identifier;
};

/// Removes or makes /dev/input.
struct InputDirectory
{
    bool exists = true;
};

struct Play
{
    QString file;
    int device = -1; ///< -1: the recording brings its own
};

struct IgnoreEvents
{ };

struct ExpectEvent
{
    InputEvent::Command command = InputEvent::None;
    InputEvent::State state = InputEvent::NoState;
    std::optional<InputEvent::Bus> bus;
    int device = -1; ///< that it comes from; -1: any
    QByteArray deviceName; ///< kernel's name of the device that it comes from; null: any
    /// How long after the last action it comes, both included.
    std::optional<qint64> earliest;
    std::optional<qint64> latest;
    std::optional<qint64> within; ///< how long it is waited for
};

struct ExpectNothing
{
    qint64 duration = 0;
};

struct ExpectIdentifier
{
    QString identifier;
};

} // namespace Step

using StepKind =
    std::variant<Step::Plug, Step::Unplug, Step::Replace, Step::Permit, Step::Keys, Step::Switch,
                 Step::Record, Step::Wait, Step::WaitForEnd, Step::StepClock, Step::Select,
                 Step::InputDirectory, Step::Play, Step::IgnoreEvents, Step::ExpectEvent,
                 Step::ExpectNothing, Step::ExpectIdentifier>;

/// One step, and the line that it was written in.
struct ScenarioStep
{
    QString file;
    int line = 0;
    QString text; ///< the line, without comment
    StepKind what;
    /// Part of the step before, as the release at the end of a click: times are still measured
    /// from the beginning of that.
    bool continues = false;
};

/// What is done to devices, and what is expected of it. A plain value.
struct Scenario
{
    QString file;
    QString profile; ///< path as seen from the working directory; empty: none is named
    int profileLine = 0;
    QString profileNamedIn; ///< the file that names it
    qint64 start = 0; ///< the wall clock at the start, ms since the epoch
    QVector<ScenarioDevice> devices;
    QVector<ScenarioStep> steps;
    int lastLine = 0; ///< of `file`

    bool hasExpectations() const;
};

} // namespace Vorn::Workbench

#endif
