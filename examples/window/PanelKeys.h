#ifndef PANELKEYS_H
#define PANELKEYS_H

#include <vorn/input/BasicInputHandler.h>
#include <vorn/input/Input.h>

#include <array>

struct PanelKey
{
    int code;
    InputEvent::Command command;
    const char *label;
};

/// The keys of the front panel, from left to right.
constexpr std::array<PanelKey, 5> panelKeys = {{
    {KEY_POWER, InputEvent::Power, "Power"},
    {KEY_VOLUMEDOWN, InputEvent::VolumeDown, "Vol -"},
    {KEY_VOLUMEUP, InputEvent::VolumeUp, "Vol +"},
    {KEY_STOP, InputEvent::Stop, "Stop"},
    {KEY_PLAY, InputEvent::StartPlay, "Play"},
}};

/// The device manager: every device that has such keys is a front panel.
class PanelKeys : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &name) override;
};

#endif
