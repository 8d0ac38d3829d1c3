#include "UsualCommands.h"

#include "EventNames.h"

#include <linux/input-event-codes.h>

namespace Vorn::Workbench {

namespace {

/// Keys that mean the same on nearly every keyboard and remote control.
constexpr struct
{
    int code;
    InputEvent::Command command;
} usualCommands[] = {
    {KEY_OK, InputEvent::Confirm},
    {KEY_ENTER, InputEvent::Confirm},
    {KEY_SELECT, InputEvent::Confirm},
    {KEY_ESC, InputEvent::Cancel},
    {KEY_BACK, InputEvent::Cancel},
    {KEY_EXIT, InputEvent::Cancel},
    {KEY_CANCEL, InputEvent::Cancel},
    {KEY_LEFT, InputEvent::CursorLeft},
    {KEY_RIGHT, InputEvent::CursorRight},
    {KEY_UP, InputEvent::CursorUp},
    {KEY_DOWN, InputEvent::CursorDown},
    {KEY_PAGEUP, InputEvent::CursorPageUp},
    {KEY_PAGEDOWN, InputEvent::CursorPageDown},
    {KEY_PLAY, InputEvent::StartPlay},
    {KEY_PLAYPAUSE, InputEvent::StartPlay},
    {KEY_PLAYCD, InputEvent::StartPlay},
    {KEY_PAUSE, InputEvent::Pause},
    {KEY_PAUSECD, InputEvent::Pause},
    {KEY_STOP, InputEvent::Stop},
    {KEY_STOPCD, InputEvent::Stop},
    {KEY_PREVIOUSSONG, InputEvent::Previous},
    {KEY_PREVIOUS, InputEvent::Previous},
    {KEY_NEXTSONG, InputEvent::Next},
    {KEY_NEXT, InputEvent::Next},
    {KEY_MEDIA_REPEAT, InputEvent::Repeat},
    {KEY_SHUFFLE, InputEvent::Shuffle},
    {KEY_VOLUMEUP, InputEvent::VolumeUp},
    {KEY_VOLUMEDOWN, InputEvent::VolumeDown},
    {KEY_MUTE, InputEvent::Mute},
    {KEY_FASTFORWARD, InputEvent::PlaySpeedUp},
    {KEY_REWIND, InputEvent::PlaySpeedDown},
    {KEY_POWER, InputEvent::Power},
    {KEY_SLEEP, InputEvent::Sleep},
    {KEY_HOMEPAGE, InputEvent::JumpHome},
    {KEY_HOME, InputEvent::JumpHome},
    {KEY_SETUP, InputEvent::JumpSettings},
    {KEY_CONFIG, InputEvent::JumpSettings},
    {KEY_FAVORITES, InputEvent::JumpFavorites},
    {KEY_INFO, InputEvent::Info},
    {KEY_SEARCH, InputEvent::Search},
    {KEY_F3, InputEvent::Search},
    {KEY_MENU, InputEvent::Context},
    {KEY_CONTEXT_MENU, InputEvent::Context},
    {KEY_WPS_BUTTON, InputEvent::WPS},
    {KEY_BLUETOOTH, InputEvent::Bluetooth},
    {KEY_MICMUTE, InputEvent::MicMute},
    {KEY_PHONE, InputEvent::AnswerCall},
    {KEY_BACKSPACE, InputEvent::Backspace},
    {KEY_DELETE, InputEvent::Delete},
    {KEY_SPACE, InputEvent::CharSpace},
};

} // namespace

std::optional<InputEvent::Command> usualKeyCommand(int keyCode)
{
    for (const auto &usual : usualCommands) {
        if (usual.code == keyCode)
            return usual.command;
    }
    // Letters and digits type themselves: "KEY_A" is CharA. Character commands follow ASCII.
    const QString name = keyName(keyCode);
    if (name.size() == 5 && isTypingKey(keyCode)) {
        const QChar character = name.at(4).toLower();
        if (character.isLetterOrNumber())
            return static_cast<InputEvent::Command>(InputEvent::CharSpace + character.toLatin1()
                                                    - ' ');
    }
    return std::nullopt;
}

std::optional<InputEvent::Command> usualSwitchCommand(int switchCode)
{
    switch (switchCode) {
    case SW_LINEIN_INSERT:
        return InputEvent::SWLineIn;
    case SW_LINEOUT_INSERT:
    case SW_HEADPHONE_INSERT:
        return InputEvent::SWLineOut;
    case SW_MICROPHONE_INSERT:
        return InputEvent::SWMicIn;
    default:
        return std::nullopt;
    }
}

} // namespace Vorn::Workbench
