#ifndef VORN_WORKBENCH_LIBRARYMESSAGE_H
#define VORN_WORKBENCH_LIBRARYMESSAGE_H

#include "Input.h"
#include "LogLine.h"

#include <QPair>
#include <QString>
#include <QVector>

#include <array>
#include <optional>
#include <variant>

namespace Vorn::Workbench {

/// The library's loggers.
enum class LibraryLogger { Input, BasicInputHandler, LinuxInputListener, KeyProcessing };

constexpr std::array<const char *, 4> loggerNames{"Input", "BasicInputHandler",
                                                  "LinuxInputListener", "KeyProcessing"};

/// What lines of the library say, by line.
namespace Said {

/// "Vorn::InputEvent(16) press"
struct EventOnBus
{
    int command = 0;
    InputEvent::State state = InputEvent::NoState;
};

/// "Device: front-panel; id: browse; command [cmd=Stop, state=KeyPressed]"
struct EventReported
{
    QString handler; ///< "front-panel; id: browse", see handlerNames()
    InputEvent::Command command = InputEvent::None;
    InputEvent::State state = InputEvent::NoState;
};

/// "key:128 value 1": passed on by the chord detector.
struct KeyPassedOn
{
    int code = 0;
    int value = 0;
};

/// "Enter BasicInputHandler::selectHandler: browse"
struct Entered
{
    enum class Function {
        Constructor,
        AddKeyHandler,
        AddSwitchHandler,
        SetKeyListener,
        SetSwitchListener,
        SelectHandler,
        SelectKeyHandler,
        SelectSwitchHandler,
    };
    Function function = Function::Constructor;
    QString argument;
};

/// "Enter LinuxInputListener::readData: 12"
struct ReadBegun
{
    int descriptor = 0;
};

/// "Dev /dev/input/event0: front-panel"
struct NodeNamed
{
    QString path;
    QString name;
};

/// " ---> added '/dev/input/event0'"
struct NodeAdded
{
    QString path;
};

/// "Removing /dev/input/event0"
struct NodeRemoved
{
    QString path;
};

/// "Event device /dev/input/event0 ready", or why it is not.
struct ListenerOpened
{
    enum class Result { Ready, NoKeys, NoSwitches, CannotOpen };
    QString path;
    Result result = Result::Ready;
};

/// "bustype: 25"
struct ListenerBus
{
    int kernelBus = 0;
};

/// "name: front-panel"
struct ListenerName
{
    QString name;
};

/// "ioctl error: -1": a listener cannot ask for the types of its node.
struct TypesUnknown
{ };

/// " type: 1 code:128 value:1"
struct RecordLogged
{
    int type = 0;
    int code = 0;
    int value = 0;
};

/// "Error reading from event device /dev/input/event0"
struct ReadFailed
{
    QString path;
};

/// "Found already event for code:128"
struct FoundAlready
{
    int code = 0;
};

/// "Double key press detected and new press event received -> drop"
struct ThirdKeyDropped
{ };

/// "Received release for non existing press -> drop"
struct ReleaseDropped
{ };

/// "Stored:(input_event: code:128 value:press time:10:00:00,000)"
struct KeysStored
{
    struct Key
    {
        int code = 0;
        bool isPress = false; ///< false for an auto-repeat, too
    };
    QVector<Key> keys; ///< in order of the presses
};

/// A warning or an error that says all there is in its text.
struct Complaint
{
    int type = 0; ///< of the codes; 0: none
    QVector<int> codes;
};

/// The library says so in passing; it follows from other lines.
struct Aside
{ };

} // namespace Said

using LibraryMessage =
    std::variant<Said::EventOnBus, Said::EventReported, Said::KeyPassedOn, Said::Entered,
                 Said::ReadBegun, Said::NodeNamed, Said::NodeAdded, Said::NodeRemoved,
                 Said::ListenerOpened, Said::ListenerBus, Said::ListenerName, Said::TypesUnknown,
                 Said::RecordLogged, Said::ReadFailed, Said::FoundAlready, Said::ThirdKeyDropped,
                 Said::ReleaseDropped, Said::KeysStored, Said::Complaint, Said::Aside>;

/// A line of the library: who says what, and from which level on it is logged.
struct LibraryLine
{
    LibraryLogger logger = LibraryLogger::Input;
    LogLevel level = LogLevel::Debug;
    LibraryMessage what;
};

/// The library's logger of that name, whose beginning a layout may have cut off.
std::optional<LibraryLogger> libraryLogger(const QString &name);

/// What a message of a logger says; nothing for a message that the library does not write.
std::optional<LibraryLine> libraryLine(LibraryLogger logger, const QString &message);

/// The same where the layout does not name the logger: that of any of them.
std::optional<LibraryLine> libraryLine(const QString &message);

/// The ways to take "front-panel; id: browse" apart into device and identifier. There are several
/// if
/// "; id: " is part of either.
QVector<QPair<QString, QString>> handlerNames(const QString &handler);

} // namespace Vorn::Workbench

#endif
