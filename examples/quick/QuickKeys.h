#ifndef QUICKKEYS_H
#define QUICKKEYS_H

#include <vorn/input/BasicInputHandler.h>

/// The device manager: every device that has such keys is a front panel.
class QuickKeys : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &name) override;
};

#endif
