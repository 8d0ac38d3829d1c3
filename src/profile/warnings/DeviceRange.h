#ifndef VORN_PROFILE_DEVICERANGE_H
#define VORN_PROFILE_DEVICERANGE_H

#include "Input.h"

#include <QHash>
#include <QPair>
#include <QString>

#include <optional>

namespace Vorn {

/// The devices that an entry of a profile matches. Those on the bus Hostlink are those with its
/// name.
struct DeviceRange
{
    std::optional<QString> name;
    std::optional<InputEvent::Bus> bus;

    /// Whether there is no such device.
    bool isEmpty() const;
};

DeviceRange rangeOf(std::optional<QString> name, std::optional<InputEvent::Bus> bus);

/// Ranges that earlier entries match.
class TakenRanges
{
public:
    void take(const DeviceRange &range, int line);

    /// The line of the earlier entry that matches all of a range; 0 if there is none.
    int takenBy(const DeviceRange &range) const;

private:
    using Key = QPair<QString, int>;
    static Key keyOf(const DeviceRange &range);

    QHash<Key, int> m_lines;
};

} // namespace Vorn

#endif
