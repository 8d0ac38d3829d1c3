#include "DeviceRange.h"

#include "LibraryFacts.h"

namespace Vorn {

bool DeviceRange::isEmpty() const
{
    return name && bus
        && (*name == QLatin1String(hostlinkName)) != (*bus == InputEvent::Bus::Hostlink);
}

DeviceRange rangeOf(std::optional<QString> name, std::optional<InputEvent::Bus> bus)
{
    if (!bus && name == QLatin1String(hostlinkName))
        bus = InputEvent::Bus::Hostlink;
    if (!name && bus == InputEvent::Bus::Hostlink)
        name = QLatin1String(hostlinkName);
    return {name, bus};
}

void TakenRanges::take(const DeviceRange &range, int line)
{
    const Key key = keyOf(range);
    if (!m_lines.contains(key))
        m_lines.insert(key, line);
}

int TakenRanges::takenBy(const DeviceRange &range) const
{
    for (const DeviceRange &wider :
         {range, DeviceRange{range.name, {}}, DeviceRange{{}, range.bus}, DeviceRange{}})
    {
        if (const int line = m_lines.value(keyOf(wider)))
            return line;
    }
    return 0;
}

TakenRanges::Key TakenRanges::keyOf(const DeviceRange &range)
{
    // A name is never mistaken for "any".
    const QString name = range.name ? QLatin1Char('=') + *range.name : QString();
    return {name, range.bus ? static_cast<int>(*range.bus) : -1};
}

} // namespace Vorn
