#include "PlayerInput.h"

#include <vorn/core/vorn.h>
#include <vorn/input/Input.h>

#include <linux/input.h>

namespace {

const QLatin1String browse("browse");
const QLatin1String text("text");

/// Maps neighbouring keys to the characters printed on them. A character's command is its ASCII
/// code plus 1000.
void registerCharacters(BasicKeyInputHandler *keys, int firstCode, const char *characters)
{
    int code = firstCode;
    for (const char *character = characters; *character; ++character, ++code)
        keys->registerKey(code, static_cast<InputEvent::Command>(1000 + *character), true);
}

/// What a remote control's keys mean while the user browses menus and lists.
void registerBrowseKeys(BasicKeyInputHandler *keys)
{
    keys->registerKey(KEY_UP, InputEvent::CursorUp, true);
    keys->registerKey(KEY_DOWN, InputEvent::CursorDown, true);
    keys->registerKey(KEY_LEFT, InputEvent::CursorLeft, true);
    keys->registerKey(KEY_RIGHT, InputEvent::CursorRight, true);
    // The number keys double as a cursor pad, as on a telephone.
    keys->registerKey(KEY_2, InputEvent::CursorUp, true);
    keys->registerKey(KEY_8, InputEvent::CursorDown, true);
    keys->registerKey(KEY_4, InputEvent::CursorLeft, true);
    keys->registerKey(KEY_6, InputEvent::CursorRight, true);
    for (int code : {KEY_UP, KEY_DOWN, KEY_2, KEY_8})
        keys->enableLongPress(code, true, {600, 200});
    for (int code : {KEY_OK, KEY_ENTER})
        keys->registerKey(code, InputEvent::Confirm, false);
    for (int code : {KEY_BACK, KEY_ESC})
        keys->registerKey(code, InputEvent::Cancel, false);
    for (int code : {KEY_SEARCH, KEY_F3})
        keys->registerKey(code, InputEvent::Search, false);
}

/// What the same keys mean while the user types.
void registerTextKeys(BasicKeyInputHandler *keys)
{
    registerCharacters(keys, KEY_1, "1234567890");
    registerCharacters(keys, KEY_Q, "qwertyuiop");
    registerCharacters(keys, KEY_A, "asdfghjkl");
    registerCharacters(keys, KEY_Z, "zxcvbnm");
    registerCharacters(keys, KEY_SPACE, " ");
    keys->registerKey(KEY_BACKSPACE, InputEvent::Backspace, true);
    keys->enableLongPress(KEY_BACKSPACE, true, {600, 200});
    keys->registerKey(KEY_LEFT, InputEvent::CursorLeft, true);
    keys->registerKey(KEY_RIGHT, InputEvent::CursorRight, true);
    for (int code : {KEY_OK, KEY_ENTER})
        keys->registerKey(code, InputEvent::Submit, false);
    for (int code : {KEY_BACK, KEY_ESC})
        keys->registerKey(code, InputEvent::Cancel, false);
}

} // namespace

PlayerInput::PlayerInput()
{
    selectHandler(browse);
    Vorn::connect(Input::instance(), &Input::inputEvent, this, &PlayerInput::on_inputEvent);
}

void PlayerInput::addDevice(const QString &device, const QString &name)
{
    ++m_deviceCount;
    if (name == QLatin1String("front-panel")) {
        addFrontPanel(device, name);
        addJacks(device, name);
    } else if (name == QLatin1String("front-panel-jacks")) {
        addJacks(device, name);
    } else if (name == QLatin1String("hostlink")) {
        addHostlink(device, name);
    } else {
        addRemote(device, name);
    }
}

void PlayerInput::removeDevice(const QString &device)
{
    --m_deviceCount;
    BasicInputHandler::removeDevice(device);
}

int PlayerInput::deviceCount() const
{
    return m_deviceCount;
}

// Selecting another identifier makes every handler forget the keys that are down and drop their
// releases, so this waits until the key that asks for it is released.
void PlayerInput::on_inputEvent(InputEvent event)
{
    if (event.state() != InputEvent::KeyReleased)
        return;
    if (event.command() == InputEvent::Search)
        selectHandler(text);
    else if (event.command() == InputEvent::Submit || event.command() == InputEvent::Cancel)
        selectHandler(browse);
}

void PlayerInput::addFrontPanel(const QString &device, const QString &name)
{
    auto *keys = new BasicKeyInputHandler(name);
    addInBothModes(device, keys);

    // Immediate: the volume changes on the press and keeps changing while the key is held.
    keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
    keys->registerKey(KEY_VOLUMEDOWN, InputEvent::VolumeDown, true);
    keys->enableLongPress(KEY_VOLUMEUP, true, {700, 600});
    keys->enableLongPress(KEY_VOLUMEDOWN, true, {700, 600});

    // Deferred: only the release tells a click from a long press or the start of a chord.
    keys->registerKey(KEY_INFO, InputEvent::Info, false);
    keys->enableLongPress(KEY_INFO, false, {700});
    keys->registerKey(KEY_STOP, InputEvent::Stop, false);
    keys->registerKey(KEY_PLAY, InputEvent::StartPlay, false);
    keys->registerDoubleKey(KEY_STOP, KEY_PLAY, InputEvent::FactoryReset);
}

void PlayerInput::addJacks(const QString &device, const QString &name)
{
    auto *jacks = new BasicSwInputHandler(name);
    jacks->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
    for (QLatin1String id : {browse, text})
        addSwitchHandler(device, jacks, id);
    // The plug may have been in since before the start. The answer goes to the listener's receiver,
    // so ask only after the registration.
    jacks->getInputStatus();
}

void PlayerInput::addHostlink(const QString &device, const QString &name)
{
    auto *keys = new BasicKeyInputHandler(name);
    addInBothModes(device, keys);
    // This overload compares with the bus of the listener, which addInBothModes() has attached.
    keys->registerKey(KEY_POWER, InputEvent::Bus::Hostlink, InputEvent::Power, true);
}

void PlayerInput::addRemote(const QString &device, const QString &name)
{
    auto *browseKeys = new BasicKeyInputHandler(name);
    registerBrowseKeys(browseKeys);
    addKeyHandler(device, browseKeys, browse);

    auto *textKeys = new BasicKeyInputHandler(name);
    registerTextKeys(textKeys);
    addKeyHandler(device, textKeys, text);
}

/// Keeps a device working whichever identifier is selected; its records are dropped while it has no
/// handler for the current one.
void PlayerInput::addInBothModes(const QString &device, BasicKeyInputHandler *keys)
{
    for (QLatin1String id : {browse, text})
        addKeyHandler(device, keys, id);
}
