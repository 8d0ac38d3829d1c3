#ifndef SETUP_H
#define SETUP_H

#include "BasicInputHandler.h"

#include <QCoreApplication>

#include <log4cplus/initializer.h>

#include <linux/input.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

class UinputDevice;

namespace Vorn::Bench {

/// What a product does before it uses the library: logging of what is wrong, and an event loop on
/// the dispatcher that was asked for, see useDispatcher(). Throws when it is another one.
class Application
{
public:
    Application();

private:
    int m_argumentCount = 1;
    char m_name[6] = "bench";
    char *m_arguments[2] = {m_name, nullptr};
    const log4cplus::Initializer m_logging;
    QCoreApplication m_application{m_argumentCount, m_arguments};
};

/// A product that has use for the keys KEY_OK and KEY_VOLUMEUP, the latter with a repeating long
/// press, and for a jack, of every device.
class Product : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &name) override;
    void removeDevice(const QString &device) override;

    int deviceCount = 0;
};

/// Sets which of Qt's dispatchers this process and those that it starts use: "glib" or "unix".
void useDispatcher(const std::string &name);
/// The one that was set.
std::string dispatcher();

/// Throws unless devices can be made here.
void requireUinput();
/// Throws unless there is no device but those that are made here, as in a guest.
void requireNoDevices();

/// Has the kernel hurry while this lives, if it is wanted: closing a node waits until no processor
/// can still be using it, ten milliseconds and more, which hides whatever else a pass costs.
class Expedition
{
public:
    explicit Expedition(bool isWanted);
    ~Expedition();
    Expedition(const Expedition &) = delete;
    Expedition &operator=(const Expedition &) = delete;

    /// The parameter of a row, with what this changes.
    std::string parameter(const std::string &text) const;

private:
    const bool m_isWanted;
};

/// Devices with the keys and the switch of Product.
std::unique_ptr<UinputDevice> makeDevice();
std::vector<std::unique_ptr<UinputDevice>> makeDevices(int count);

/// Runs the event loop until the first pass of a manager that was made just before has returned.
void waitForFirstPass();

/// Throws unless @p product has found @p count devices.
void requireDevices(const Product &product, int count);

double microsecondsSince(std::chrono::steady_clock::time_point start);

} // namespace Vorn::Bench

#endif
