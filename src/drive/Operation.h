#ifndef VORN_DRIVE_OPERATION_H
#define VORN_DRIVE_OPERATION_H

#include "DeviceDescription.h"
#include "Recording.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QVector>

#include <optional>
#include <variant>

/// What the driver of a program and the agent in it say to each other, in lines of JSON over a
/// socket. The driver sends one operation at a time, and the agent answers it. In between the agent
/// sends the entries of the session, as docs/session.md describes them.
namespace Vorn::Drive {

/// The environment variable with the number of the agent's end of the socket.
constexpr char socketVariable[] = "VORN_DRIVE_SOCKET";
/// The one with what was preloaded without the agent.
constexpr char formerPreloadVariable[] = "VORN_DRIVE_PRELOAD";

/// Each operation lists its members once, for reading and for writing. Nodes are N of
/// /dev/input/eventN, times are ms.
namespace Operations {

/// Sent before the program runs; answered when it has made its QCoreApplication.
struct Begin
{
    static constexpr char name[] = "begin";
    /// Of the driver and of the agent, which are built together.
    QString version;
    bool virtualTime = false;
    qint64 wallClock = 0; ///< at the start of virtual time, ms since the epoch

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("version", version);
        visitor("virtualTime", virtualTime);
        visitor("wallClock", wallClock);
    }
};

/// Answered when a device manager has looked at /dev/input and nothing else is to be done.
struct AwaitManager
{
    static constexpr char name[] = "await-manager";

    template <typename Visitor>
    void visit(Visitor &)
    { }
};

/// Answered when nothing is to be done.
struct Settle
{
    static constexpr char name[] = "settle";

    template <typename Visitor>
    void visit(Visitor &)
    { }
};

struct Wait
{
    static constexpr char name[] = "wait";
    qint64 until = 0; ///< of the session
    /// Ends the wait when more than these were published since the start; -1: never.
    qint64 events = -1;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("until", until);
        visitor("events", events);
    }
};

struct Plug
{
    static constexpr char name[] = "plug";
    int node = 0;
    Sim::DeviceDescription device;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("node", node);
        visitor("device", device);
    }
};

struct Unplug
{
    static constexpr char name[] = "unplug";
    int node = 0;
    bool losingRecords = false;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("node", node);
        visitor("losingRecords", losingRecords);
    }
};

struct Replace
{
    static constexpr char name[] = "replace";
    int node = 0;
    Sim::DeviceDescription device;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("node", node);
        visitor("device", device);
    }
};

struct SetMode
{
    static constexpr char name[] = "set-mode";
    int node = 0;
    int mode = 0;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("node", node);
        visitor("mode", mode);
    }
};

struct SetInputDirectory
{
    static constexpr char name[] = "set-input-directory";
    bool exists = true;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("exists", exists);
    }
};

/// The answer has the code that was refused.
struct ChangeKeys
{
    static constexpr char name[] = "change-keys";
    int node = 0;
    QVector<int> codes;
    int value = 0;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("node", node);
        visitor("codes", codes);
        visitor("value", value);
    }
};

struct ReleaseKeys
{
    static constexpr char name[] = "release-keys";
    int node = 0;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("node", node);
    }
};

/// The answer has the code that was refused.
struct SetSwitch
{
    static constexpr char name[] = "set-switch";
    int node = 0;
    int code = 0;
    bool on = false;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("node", node);
        visitor("code", code);
        visitor("on", on);
    }
};

struct Send
{
    static constexpr char name[] = "send";
    int node = 0;
    QVector<Workbench::RecordedEvent> records;
    qint64 offset = 0;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("node", node);
        visitor("records", records);
        visitor("offset", offset);
    }
};

struct StepWallClock
{
    static constexpr char name[] = "step-wall-clock";
    qint64 delta = 0;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("delta", delta);
    }
};

struct Select
{
    static constexpr char name[] = "select";
    QString identifier;

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("identifier", identifier);
    }
};

/// The answer has the identifier that is selected.
struct AskIdentifier
{
    static constexpr char name[] = "ask-identifier";

    template <typename Visitor>
    void visit(Visitor &)
    { }
};

/// Ends the program's event loop, and the agent's work.
struct End
{
    static constexpr char name[] = "end";

    template <typename Visitor>
    void visit(Visitor &)
    { }
};

} // namespace Operations

using Operation =
    std::variant<Operations::Begin, Operations::AwaitManager, Operations::Settle, Operations::Wait,
                 Operations::Plug, Operations::Unplug, Operations::Replace, Operations::SetMode,
                 Operations::SetInputDirectory, Operations::ChangeKeys, Operations::ReleaseKeys,
                 Operations::SetSwitch, Operations::Send, Operations::StepWallClock,
                 Operations::Select, Operations::AskIdentifier, Operations::End>;

struct Answer
{
    qint64 time = 0; ///< µs of the session
    int refused = -1; ///< code; -1: none was
    QString identifier;
    QString folder; ///< that stands in for /dev; to Begin
    qint64 wallClock = 0; ///< at the start of the session, µs since the epoch; to Begin
    qint64 monotonicClock = 0; ///< the same by the system's monotonic clock, µs; to Begin
    QString error; ///< why it could not be done; empty if it was

    template <typename Visitor>
    void visit(Visitor &visitor)
    {
        visitor("time", time);
        visitor("refused", refused);
        visitor("identifier", identifier);
        visitor("folder", folder);
        visitor("wallClock", wallClock);
        visitor("monotonicClock", monotonicClock);
        visitor("error", error);
    }
};

/// One line each, line feed included.
QByteArray toLine(const Operation &operation);
QByteArray toLine(const Answer &answer);

/// Nothing if the line is no operation, or lacks a member.
std::optional<Operation> operationFrom(const QByteArray &line);
/// Nothing if the line is something else, such as an entry of the session.
std::optional<Answer> answerFrom(const QByteArray &line);

} // namespace Vorn::Drive

#endif
