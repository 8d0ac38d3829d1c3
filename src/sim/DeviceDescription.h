#ifndef VORN_SIM_DEVICEDESCRIPTION_H
#define VORN_SIM_DEVICEDESCRIPTION_H

#include <QByteArray>
#include <QVector>

#include <linux/input.h>
#include <sys/types.h>

namespace Vorn::Sim {

/// What a simulated input device is and can do. A plain value: fill in the fields, or start from
/// keyboard() or switchBox() and refine.
///
/// @code
/// auto panel = DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_OK, KEY_VOLUMEUP})
///                  .withSwitches({SW_LINEIN_INSERT}, {SW_LINEIN_INSERT})
///                  .withAutoRepeat();
/// @endcode
struct DeviceDescription
{
    /// Kernel name, of any length; every reader gets as much as its request has room for. A null
    /// array is a device without a name, for which the request fails with `ENOENT`.
    QByteArray name = QByteArrayLiteral("simulated device");
    input_id id = {BUS_HOST, 0x1, 0x1, 0x1};
    /// Codes of `EV_KEY` that the device declares. `EV_KEY` is declared when there is one.
    QVector<int> keys;
    /// Codes of `EV_SW` that the device declares. `EV_SW` is declared when there is one.
    QVector<int> switches;
    /// Event types that are declared besides those that follow from the other fields, with every
    /// code and value allowed. `EV_KEY` or `EV_SW` here declares the type alone, without codes.
    QVector<int> eventTypes;
    /// Declares `EV_REP`, with a delay of 250 ms and a period of 33 ms.
    bool autoRepeat = false;
    /// Keys that are down when the device appears; they are declared, too.
    QVector<int> keysHeld;
    /// Switches that are on when the device appears; they are declared, too.
    QVector<int> switchesOn;
    /// Access bits of the node. Without a read bit it cannot be opened, not even by root.
    mode_t mode = 0660;

    /// A device with keys.
    static DeviceDescription keyboard(const QByteArray &name, int bus, const QVector<int> &keys);

    /// A device with switches; those of @p on are on from the start.
    static DeviceDescription switchBox(const QByteArray &name, int bus,
                                       const QVector<int> &switches, const QVector<int> &on = {});

    /// The same device with further keys; those of @p held are down from the start.
    DeviceDescription withKeys(const QVector<int> &codes, const QVector<int> &held = {}) const;

    /// The same device with further switches; those of @p on are on from the start.
    DeviceDescription withSwitches(const QVector<int> &codes, const QVector<int> &on = {}) const;

    /// The same device with the kernel's auto-repeat.
    DeviceDescription withAutoRepeat() const;

    /// The same device with other access bits, e.g. 0 for a node whose owner and mode are set
    /// later, see InputSubsystem::setPermissions().
    DeviceDescription withMode(mode_t bits) const;

    /// The same device with other identity numbers.
    DeviceDescription withId(int bus, int vendor, int product, int version) const;

    /// The same device with further event types, e.g. `EV_MSC`.
    DeviceDescription withEventTypes(const QVector<int> &types) const;
};

} // namespace Vorn::Sim

#endif
