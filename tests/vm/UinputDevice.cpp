#include "UinputDevice.h"

#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>

#include <cerrno>
#include <cstring>

UinputDevice::UinputDevice(const UinputDescription &description)
{
    const std::unique_ptr<libevdev, decltype(&libevdev_free)> blueprint(libevdev_new(),
                                                                        &libevdev_free);
    libevdev_set_name(blueprint.get(), description.name.c_str());
    libevdev_set_id_bustype(blueprint.get(), static_cast<int>(description.bus));
    for (unsigned int code : description.keys)
        libevdev_enable_event_code(blueprint.get(), EV_KEY, code, nullptr);
    for (unsigned int code : description.switches)
        libevdev_enable_event_code(blueprint.get(), EV_SW, code, nullptr);

    libevdev_uinput *device = nullptr;
    const int error =
        libevdev_uinput_create_from_device(blueprint.get(), LIBEVDEV_UINPUT_OPEN_MANAGED, &device);
    if (error != 0)
        qFatal("cannot create the uinput device \"%s\": %s", description.name.c_str(),
               std::strerror(-error));
    m_device.reset(device);
    m_node = QString::fromLatin1(libevdev_uinput_get_devnode(device));
}

UinputDevice::~UinputDevice() = default;

int UinputDevice::descriptor() const
{
    return libevdev_uinput_get_fd(m_device.get());
}

void UinputDevice::send(unsigned int type, unsigned int code, int value)
{
    int error = libevdev_uinput_write_event(m_device.get(), type, code, value);
    if (error == 0)
        error = libevdev_uinput_write_event(m_device.get(), EV_SYN, SYN_REPORT, 0);
    if (error != 0)
        qFatal("cannot send a record on %s: %s", qPrintable(m_node), std::strerror(-error));
}

void UinputDevice::Deleter::operator()(libevdev_uinput *device) const
{
    libevdev_uinput_destroy(device);
}
