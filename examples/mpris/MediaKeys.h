#ifndef MEDIAKEYS_H
#define MEDIAKEYS_H

#include <vorn/input/BasicInputHandler.h>

/// The device manager: the media keys of every keyboard and remote control.
class MediaKeys : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &name) override;
};

#endif
