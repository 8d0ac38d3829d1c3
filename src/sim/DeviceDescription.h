#ifndef VORN_SIM_DEVICEDESCRIPTION_H
#define VORN_SIM_DEVICEDESCRIPTION_H

#include <QByteArray>
#include <QVector>

#include <linux/input.h>
#include <sys/types.h>

namespace Vorn::Sim {

/// @file
/// What a simulated device is and has.

/// The identity and the abilities of a simulated input device. A plain value: fill in the fields,
/// or start from keyboard() or switchBox() and refine.
///
/// @code
/// auto panel = DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_OK, KEY_VOLUMEUP})
///                  .withSwitches({SW_LINEIN_INSERT}, {SW_LINEIN_INSERT})
///                  .withAutoRepeat();
/// @endcode
struct DeviceDescription
{
    /// The name in the kernel, of any length; a request for it gets as much as fits. If the array
    /// is null, the device has no name and the request fails with `ENOENT`.
    QByteArray name = QByteArrayLiteral("simulated device");
    /// Bus, vendor, product, version. The bus decides the library's, e.g. `BUS_HOST` LocalUI.
    input_id id = {BUS_HOST, 0x1, 0x1, 0x1};
    /// The codes of `EV_KEY` that the device declares. Any code declares `EV_KEY` as well.
    QVector<int> keys;
    /// The codes of `EV_SW` that the device declares. Any code declares `EV_SW` as well.
    QVector<int> switches;
    /// Event types to declare in addition to those that the other fields imply. They allow every
    /// code and value; only `EV_KEY` and `EV_SW` are declared without any codes.
    QVector<int> eventTypes;
    /// Declares `EV_REP`, with a delay of 250 ms and a period of 33 ms.
    bool autoRepeat = false;
    /// Keys that are down when the device appears. They are declared as well.
    QVector<int> keysHeld;
    /// Switches that are on when the device appears. They are declared as well.
    QVector<int> switchesOn;
    /// The access bits of the node. Without a read bit it cannot be opened, not even by root.
    mode_t mode = 0660;

    /// A device with keys.
    /// @param name the kernel's name
    /// @param bus `BUS_HOST`, `BUS_USB` …
    /// @param keys codes, 0 to 767
    /// @return the description
    static DeviceDescription keyboard(const QByteArray &name, int bus, const QVector<int> &keys);

    /// A device with switches.
    /// @param name the kernel's name
    /// @param bus `BUS_HOST`, `BUS_USB` …
    /// @param switches codes
    /// @param on those that are on from the start
    /// @return the description
    static DeviceDescription switchBox(const QByteArray &name, int bus,
                                       const QVector<int> &switches, const QVector<int> &on = {});

    /// The same device with more keys.
    /// @param codes 0 to 767
    /// @param held those that are down from the start
    /// @return the changed copy
    DeviceDescription withKeys(const QVector<int> &codes, const QVector<int> &held = {}) const;

    /// The same device with more switches.
    /// @param codes their codes
    /// @param on those that are on from the start
    /// @return the changed copy
    DeviceDescription withSwitches(const QVector<int> &codes, const QVector<int> &on = {}) const;

    /// The same device with the kernel's auto-repeat.
    /// @return the changed copy
    DeviceDescription withAutoRepeat() const;

    /// The same device with other access bits, e.g. 0 for a node that becomes accessible later,
    /// see InputSubsystem::setPermissions().
    /// @param bits as for `chmod`
    /// @return the changed copy
    DeviceDescription withMode(mode_t bits) const;

    /// The same device with other identity numbers.
    /// @param bus,vendor,product,version 16 bits each
    /// @return the changed copy
    DeviceDescription withId(int bus, int vendor, int product, int version) const;

    /// The same device with more event types.
    /// @param types e.g. `EV_MSC`
    /// @return the changed copy
    DeviceDescription withEventTypes(const QVector<int> &types) const;
};

} // namespace Vorn::Sim

#endif
