#ifndef UINPUTDEVICE_H
#define UINPUTDEVICE_H

#include <QString>

#include <linux/input.h>

#include <memory>
#include <string>
#include <vector>

struct libevdev_uinput;

/// The identity and capabilities of a device.
struct UinputDescription
{
    std::string name = "front-panel"; ///< at most 79 bytes, the kernel's limit
    unsigned int bus = BUS_HOST;
    std::vector<unsigned int> keys;
    std::vector<unsigned int> switches;
};

/// A real kernel device whose records come from the test. The constructor returns once it is
/// plugged in and has its node; the destructor unplugs it. Aborts the process if the kernel
/// refuses.
class UinputDevice
{
public:
    explicit UinputDevice(const UinputDescription &description);
    ~UinputDevice();
    UinputDevice(const UinputDevice &) = delete;
    UinputDevice &operator=(const UinputDevice &) = delete;

    /// E.g. "/dev/input/event0".
    QString node() const { return m_node; }
    /// For writing records directly.
    int descriptor() const;

    /// Sends one record, and the synchronisation record that ends its batch.
    void send(unsigned int type, unsigned int code, int value);
    void press(unsigned int code) { send(EV_KEY, code, 1); }
    void release(unsigned int code) { send(EV_KEY, code, 0); }
    void set(unsigned int switchCode, bool on) { send(EV_SW, switchCode, on ? 1 : 0); }

private:
    struct Deleter
    {
        void operator()(libevdev_uinput *device) const;
    };
    std::unique_ptr<libevdev_uinput, Deleter> m_device;
    QString m_node;
};

#endif
