#ifndef VORN_WORKBENCH_SCENARIO_H
#define VORN_WORKBENCH_SCENARIO_H

#include "Input.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>
#include <variant>

namespace Vorn::Workbench {

/// A device that a scenario declares. Absent keys and switches are those that the profile maps and
/// the steps use.
struct ScenarioDevice
{
    QString label; ///< what the steps call it
    std::optional<QByteArray> name; ///< the kernel's; absent: the label, or the recording's
    std::optional<int> bus; ///< the kernel's; absent: a front panel's, or the recording's
    std::optional<int> node; ///< N of /dev/input/eventN; absent: the lowest free one
    std::optional<QVector<int>> keys;
    std::optional<QVector<int>> switches;
    QVector<int> usedKeys; ///< that steps use
    QVector<int> usedSwitches;
    QVector<int> held; ///< keys that are down whenever it is plugged in
    QVector<int> on; ///< switches that are on whenever it is plugged in
    bool autoRepeat = false; ///< the kernel's
    QString recording; ///< file with its description; empty: none
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
    bool losingRecords = false; ///< unread records never arrive
};

/// Puts another device on the same node between two scans of the library.
struct Replace
{
    int device = 0;
    QByteArray name;
    std::optional<int> bus; ///< absent: as before
};

/// Sets whether the node can be opened.
struct Permit
{
    int device = 0;
    bool readable = true;
};

/// Changes keys, all in one packet.
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

/// Sends one record as it is: unchecked, without a SYN_REPORT, in a read of its own.
struct Record
{
    int device = 0;
    int type = 0;
    int code = 0;
    int value = 0;
    qint64 offset = 0; ///< of its time stamp from the wall clock
};

struct Wait
{
    qint64 duration = 0;
};

/// Waits until all recordings have been played.
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

/// Removes or creates /dev/input.
struct InputDirectory
{
    bool exists = true;
};

struct Play
{
    QString file;
    int device = -1; ///< -1: the recording brings its own devices
};

struct IgnoreEvents
{ };

struct ExpectEvent
{
    InputEvent::Command command = InputEvent::None;
    InputEvent::State state = InputEvent::NoState;
    std::optional<InputEvent::Bus> bus;
    int device = -1; ///< it comes from; -1: any
    QByteArray deviceName; ///< kernel's name of the device it comes from; null: any
    /// How long after the last action it comes, inclusive.
    std::optional<qint64> earliest;
    std::optional<qint64> latest;
    std::optional<qint64> within; ///< how long to wait for it
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

/// Whether a step does something, so that `after` counts from it.
bool isAction(const StepKind &step);
/// Whether a step checks something; to ignore events is no check.
bool isExpectation(const StepKind &step);

/// One step and the line it was written in.
struct ScenarioStep
{
    QString file;
    int line = 0;
    QString text; ///< the line, without comment
    StepKind what;
    /// Part of the previous step, like the release at the end of a click: times are still measured
    /// from the beginning of that step.
    bool continues = false;
};

/// What is done to devices, and what is expected to come of it. A plain value.
struct Scenario
{
    QString file;
    QString profile; ///< path as seen from the working directory; empty: none is named
    int profileLine = 0;
    QString profileNamedIn; ///< the file that names it
    qint64 start = 0; ///< wall clock at the start, ms since the epoch
    QVector<ScenarioDevice> devices;
    QVector<ScenarioStep> steps;
    int lastLine = 0; ///< of `file`

    bool hasExpectations() const;
};

} // namespace Vorn::Workbench

#endif
