#ifndef DEVICES_H
#define DEVICES_H

#include "BasicInputHandler.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// A product's device manager that records the library's calls to it.
class Devices : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &name) override
    {
        calls.push_back("add " + device.toStdString() + " " + name.toStdString());
        if (onAdd)
            onAdd(device, name);
    }

    void removeDevice(const QString &device) override
    {
        calls.push_back("remove " + device.toStdString());
        BasicInputHandler::removeDevice(device);
    }

    std::vector<std::string> take() { return std::exchange(calls, {}); }

    std::vector<std::string> calls;
    std::function<void(const QString &, const QString &)> onAdd;
};

#endif
