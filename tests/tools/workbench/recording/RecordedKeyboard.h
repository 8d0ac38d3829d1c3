#ifndef VORN_TESTS_RECORDEDKEYBOARD_H
#define VORN_TESTS_RECORDEDKEYBOARD_H

#include "RecordedDevice.h"

#include <linux/input.h>

/// A device with something in every field that a recording can hold.
inline Vorn::Workbench::RecordedDevice recordedKeyboard()
{
    Vorn::Workbench::RecordedDevice device;
    device.name = "A \\ \"Keyboard\"\nof two lines";
    device.id = {BUS_USB, 0x46d, 0xc31c, 0x110};
    device.phys = "usb-0000:00:14.0-1/input0";
    device.uniq = "77";
    device.properties = QByteArray("\x04", 1);
    for (const int code : {KEY_ESC, KEY_A, KEY_VOLUMEUP, KEY_INFO, KEY_MAX})
        device.declare(EV_KEY, code);
    device.declare(EV_SW, SW_MAX);
    device.declare(EV_MSC, MSC_SCAN);
    return device;
}

#endif
