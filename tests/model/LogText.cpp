#include "LogText.h"

#include <array>
#include <cstdio>

namespace Model {

namespace {

const std::array<const char *, 57> commands{{"None",
                                             "Confirm",
                                             "Cancel",
                                             "CursorLeft",
                                             "CursorRight",
                                             "CursorUp",
                                             "CursorDown",
                                             "CursorPageUp",
                                             "CursorPageDown",
                                             "StartPlay",
                                             "Pause",
                                             "Stop",
                                             "Previous",
                                             "Next",
                                             "Repeat",
                                             "Shuffle",
                                             "VolumeUp",
                                             "VolumeDown",
                                             "Mute",
                                             "PlaySpeedUp",
                                             "PlaySpeedDown",
                                             "PlayView",
                                             "Power",
                                             "Sleep",
                                             "LikeIt",
                                             "DislikeIt",
                                             "JumpHome",
                                             "JumpSettings",
                                             "JumpFavorites",
                                             "JumpStorage",
                                             "JumpVTuner",
                                             "JumpUPnP",
                                             "Info",
                                             "Search",
                                             "Context",
                                             "ContainerInfo",
                                             "Submit",
                                             "WPS",
                                             "Bluetooth",
                                             "Default",
                                             "SWLineIn",
                                             "SWLineOut",
                                             "SWMicIn",
                                             "MicMute",
                                             "FactoryReset",
                                             "FactoryResetDelayed",
                                             "PushToTalk",
                                             "Preset0",
                                             "DisconnectBluetoothAudioDevices",
                                             "RemoveBluetoothAudioDevices",
                                             "RedialLastCall",
                                             "AnswerCall",
                                             "HangupCall",
                                             "RejectCall",
                                             "HangupAllCalls",
                                             "Backspace",
                                             "Delete"}};

const std::array<const char *, 6> states{
    {"Unknown", "KeyPressed", "KeyReleased", "KeyLongPress", "SwitchEnabled", "SwitchDisabled"}};

const std::array<const char *, 6> stateWords{
    {"Unknown", "press", "release", "long press", "switch enable", "switch disable"}};

} // namespace

std::string recordText(const Record &record)
{
    constexpr std::int64_t day = 24 * 60 * 60 * 1000;
    const std::int64_t time = (record.msecs % day + day) % day;
    std::array<char, 16> clock{};
    std::snprintf(clock.data(), clock.size(), "%02d:%02d:%02d,%03d",
                  static_cast<int>(time / 3'600'000), static_cast<int>(time / 60'000 % 60),
                  static_cast<int>(time / 1000 % 60), static_cast<int>(time % 1000));
    return "input_event: code:" + std::to_string(record.code)
        + " value:" + (record.value == 1 ? "press" : "release") + " time:" + clock.data();
}

std::string eventText(int command, int state)
{
    return std::string("[cmd=") + commands.at(static_cast<std::size_t>(command))
        + ", state=" + states.at(static_cast<std::size_t>(state)) + "]";
}

std::string busText(int command, int state)
{
    return "Vorn::InputEvent(" + std::to_string(command) + ") "
        + stateWords.at(static_cast<std::size_t>(state));
}

void report(Observer &observer, const std::string &device, const std::string &id, int command,
            int state, int bus)
{
    if (observer.isLogging()) {
        observer.onLine("BasicInputHandler", TraceLevel,
                        "Device: " + device + "; id: " + id + "; command "
                            + eventText(command, state));
        observer.onLine("Input", Debug, busText(command, state));
    }
    observer.onPublished(command, state, bus);
}

} // namespace Model
