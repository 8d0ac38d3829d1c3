#ifndef FRONTPANEL_H
#define FRONTPANEL_H

#include <vorn/input/BasicInputHandler.h>

/// The product's device manager: what the keys of its front panel mean.
class FrontPanel : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &name) override;
};

#endif
