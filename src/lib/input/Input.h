#ifndef VORN_INPUT_INPUT_H
#define VORN_INPUT_INPUT_H

#include "vorn_input_export.h"

#include <QExplicitlySharedDataPointer>
#include <QMetaType>
#include <QObject>
#include <QString>

/// @file
/// The event value that leaves the library, and the bus on which it is published.

/// A logical command of the product, the state of the control that produced it, and the bus its
/// device is attached to.
///
/// This is the only value that leaves the library: handlers build it, and the event bus `Input`
/// publishes it. It is immutable and implicitly shared: a copy costs one atomic increment and no
/// allocation, and copies may be used and destroyed on any thread. The numeric values of all three
/// enumerations are a stable interface.
///
/// @code
/// InputEvent event(InputEvent::VolumeUp, InputEvent::KeyPressed, InputEvent::Bus::LocalUI);
/// event.toString(); // "[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]"
/// @endcode
class VORN_INPUT_EXPORT InputEvent
{
    Q_GADGET

public:
    /// What the user asked for.
    ///
    /// There are two blocks, and the gap between them is reserved: 0 to 56 are the product's
    /// functions, 1032 to 1126 are text entry, numbered 1000 plus the character's ASCII code.
    /// Logs print the names as spelled here (`CharMore` for `>`, `CharMul` for `*`,
    /// `CharBraceLeft` for `[`), so the spelling is part of the interface.
    enum Command : int {
        None = 0,
        Confirm = 1,
        Cancel = 2,
        CursorLeft = 3,
        CursorRight = 4,
        CursorUp = 5,
        CursorDown = 6,
        CursorPageUp = 7,
        CursorPageDown = 8,
        StartPlay = 9,
        Pause = 10,
        Stop = 11,
        Previous = 12,
        Next = 13,
        Repeat = 14,
        Shuffle = 15,
        VolumeUp = 16,
        VolumeDown = 17,
        Mute = 18,
        PlaySpeedUp = 19,
        PlaySpeedDown = 20,
        PlayView = 21,
        Power = 22,
        Sleep = 23,
        LikeIt = 24,
        DislikeIt = 25,
        JumpHome = 26,
        JumpSettings = 27,
        JumpFavorites = 28,
        JumpStorage = 29,
        JumpVTuner = 30,
        JumpUPnP = 31,
        Info = 32,
        Search = 33,
        Context = 34,
        ContainerInfo = 35,
        Submit = 36,
        WPS = 37,
        Bluetooth = 38,
        Default = 39,
        SWLineIn = 40,
        SWLineOut = 41,
        SWMicIn = 42,
        MicMute = 43,
        FactoryReset = 44,
        FactoryResetDelayed = 45,
        PushToTalk = 46,
        Preset0 = 47,
        DisconnectBluetoothAudioDevices = 48,
        RemoveBluetoothAudioDevices = 49,
        RedialLastCall = 50,
        AnswerCall = 51,
        HangupCall = 52,
        RejectCall = 53,
        HangupAllCalls = 54,
        Backspace = 55,
        Delete = 56,

        CharSpace = 1032, ///< `space`
        CharExclamation = 1033, ///< `!`
        CharQuotation = 1034, ///< `"`
        CharHash = 1035, ///< `#`
        CharDollar = 1036, ///< `$`
        CharPercentage = 1037, ///< `%`
        CharAnd = 1038, ///< `&`
        CharApostrophe = 1039, ///< `'`
        CharBracketLeft = 1040, ///< `(`
        CharBracketRight = 1041, ///< `)`
        CharMul = 1042, ///< `*`
        CharPlus = 1043, ///< `+`
        CharComma = 1044, ///< `,`
        CharMinus = 1045, ///< `-`
        CharDot = 1046, ///< `.`
        CharSlash = 1047, ///< `/`
        Number0 = 1048,
        Number1 = 1049,
        Number2 = 1050,
        Number3 = 1051,
        Number4 = 1052,
        Number5 = 1053,
        Number6 = 1054,
        Number7 = 1055,
        Number8 = 1056,
        Number9 = 1057,
        CharColon = 1058, ///< `:`
        CharSemicolon = 1059, ///< `;`
        CharLess = 1060, ///< `<`
        CharEqual = 1061, ///< `=`
        CharMore = 1062, ///< `>`
        CharQuestionmark = 1063, ///< `?`
        CharAt = 1064, ///< `@`
        CharCapA = 1065,
        CharCapB = 1066,
        CharCapC = 1067,
        CharCapD = 1068,
        CharCapE = 1069,
        CharCapF = 1070,
        CharCapG = 1071,
        CharCapH = 1072,
        CharCapI = 1073,
        CharCapJ = 1074,
        CharCapK = 1075,
        CharCapL = 1076,
        CharCapM = 1077,
        CharCapN = 1078,
        CharCapO = 1079,
        CharCapP = 1080,
        CharCapQ = 1081,
        CharCapR = 1082,
        CharCapS = 1083,
        CharCapT = 1084,
        CharCapU = 1085,
        CharCapV = 1086,
        CharCapW = 1087,
        CharCapX = 1088,
        CharCapY = 1089,
        CharCapZ = 1090,
        CharBraceLeft = 1091, ///< `[`
        CharBackslash = 1092, ///< `\`
        CharBraceRight = 1093, ///< `]`
        CharCaret = 1094, ///< `^`
        CharUnderscore = 1095, ///< `_`
        CharGrave = 1096, ///< `\``
        CharA = 1097,
        CharB = 1098,
        CharC = 1099,
        CharD = 1100,
        CharE = 1101,
        CharF = 1102,
        CharG = 1103,
        CharH = 1104,
        CharI = 1105,
        CharJ = 1106,
        CharK = 1107,
        CharL = 1108,
        CharM = 1109,
        CharN = 1110,
        CharO = 1111,
        CharP = 1112,
        CharQ = 1113,
        CharR = 1114,
        CharS = 1115,
        CharT = 1116,
        CharU = 1117,
        CharV = 1118,
        CharW = 1119,
        CharX = 1120,
        CharY = 1121,
        CharZ = 1122,
        CharCurlyBraceLeft = 1123, ///< `{`
        CharPipe = 1124, ///< `|`
        CharCurlyBraceRight = 1125, ///< `}`
        CharTilde = 1126, ///< `~`
    };
    Q_ENUM(Command)

    /// What happened to the control. toString() prints these names unless noted otherwise.
    enum State : int {
        NoState = 0, ///< printed as "Unknown"
        KeyPressed = 1,
        KeyReleased = 2,
        KeyLongPress = 3, ///< once per expired long-press timeout, while the key is down
        SwitchEnabled = 4,
        SwitchDisabled = 5,
    };

    /// The bus the device is attached to. Scoped because there is also a `Bluetooth` command.
    enum class Bus : int {
        NoBus = 0, ///< unknown; not printed
        Hostlink = 1, ///< the device whose kernel name is "hostlink"
        LocalUI = 2, ///< the product's own front panel (Linux bus type "host")
        Bluetooth = 3,
        USB = 4,
        PCI = 5,
        ADB = 6,
        I2C = 7,
        SPI = 8,
        CEC = 9,
    };
    Q_ENUM(Bus)

    /// `None`, `NoState`, `NoBus`.
    InputEvent();

    /// Numbers that the enumerations do not have are allowed, and kept.
    /// @param command what the user asked for
    /// @param state what happened to the control
    /// @param bus where its device is attached
    InputEvent(Command command, State state, Bus bus);

    /// Shares the values of @p other.
    /// @param other may be used on another thread
    InputEvent(const InputEvent &other);

    /// Shares the values of @p other.
    /// @param other may be used on another thread
    /// @return this event
    InputEvent &operator=(const InputEvent &other);
    ~InputEvent();

    /// @return what the user asked for
    Command command() const;

    /// @return what happened to the control
    State state() const;

    /// @return where the control's device is attached
    Bus bus() const;

    /// The command's name, e.g. "VolumeUp".
    /// @return the name, or the number in decimal if it has none, e.g. "57" or "-1"
    QString cmdToString() const;

    /// One line for logs: "[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]". The bus part is omitted
    /// for `NoBus`.
    /// @return the line; commands, states and buses without a name are in decimal
    QString toString() const;

private:
    class Data;
    QExplicitlySharedDataPointer<Data> d;
};

Q_DECLARE_METATYPE(InputEvent)

/// The process-wide bus on which every logical input event is published.
///
/// @code
/// Vorn::connect(Input::instance(), &Input::inputEvent, this, &Player::on_inputEvent);
/// @endcode
///
/// **Thread**: instance() takes no lock. Its first call, whether by a handler or a receiver, must
/// be made on the thread whose event loop owns the library's objects. The signal is emitted
/// synchronously on the reporting thread; receivers on other threads get it queued, which is why
/// the meta-type "InputEvent" is registered.
///
/// **From inside a slot** an application may register, deregister and select handlers, report
/// further events, and delete handlers, listeners and the device manager. It should not run an
/// event loop there: with Qt's GLib dispatcher that loop can read the records that the outer one is
/// about to read, which then blocks until the next record.
///
/// **Log**, logger "Input": DEBUG "Vorn::InputEvent(<command number>) <state word>", where the word
/// is "press", "release", "long press", "switch enable", "switch disable" or "Unknown".
class VORN_INPUT_EXPORT Input : public QObject
{
    Q_OBJECT

public:
    /// Registers the meta-type "InputEvent". Products use instance().
    Input();

    /// The one instance, created by the first call and never deleted.
    /// @return never null; callers must not delete it
    static Input *instance();

    /// Publishes an event at once: same as `instance()->emitInputEvent(event)`. Handlers call it;
    /// products may, for commands that come from elsewhere.
    /// @param event what is published
    static void reportInputEvent(InputEvent event);

    /// Writes the debug line, opens the profiler's response watcher and emits inputEvent(), in
    /// that order. The watcher is opened for every event, even when logging is off.
    /// @param event what is published
    void emitInputEvent(InputEvent event);

    /// The object instance() returns; null until the first call.
    static Input *s_instance;

Q_SIGNALS:
    /// Emitted once per reported event, in the order reported.
    void inputEvent(InputEvent);
};

#endif
