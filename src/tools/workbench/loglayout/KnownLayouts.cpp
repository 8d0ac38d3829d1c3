#include "KnownLayouts.h"

#include <algorithm>

namespace Vorn::Workbench {

bool KnownLayouts::add(const LogLayout &layout)
{
    if (texts().contains(layout.text()))
        return false;
    m_layouts.push_back(layout);
    m_current = m_layouts.size() - 1;
    return true;
}

LogLayout::Fit KnownLayouts::parse(std::string_view line, LogFields *fields)
{
    LogLayout::Fit best = m_layouts[m_current].parse(line, fields);
    for (std::size_t i = 0; i < m_layouts.size() && best != LogLayout::Fit::Whole; ++i) {
        if (i == m_current)
            continue;
        LogFields other;
        const LogLayout::Fit fit = m_layouts[i].parse(line, &other);
        if (fit == LogLayout::Fit::Whole)
            m_current = i;
        if (fit == LogLayout::Fit::Whole || best == LogLayout::Fit::None) {
            best = fit;
            *fields = other;
        }
    }
    return best;
}

QStringList KnownLayouts::texts() const
{
    QStringList texts;
    for (const LogLayout &layout : m_layouts)
        texts += layout.text();
    return texts;
}

bool KnownLayouts::haveTimes() const
{
    return std::any_of(m_layouts.begin(), m_layouts.end(),
                       [](const LogLayout &layout) { return layout.hasTime(); });
}

bool KnownLayouts::areDaysOpen() const
{
    return std::any_of(m_layouts.begin(), m_layouts.end(),
                       [](const LogLayout &layout) { return layout.isDayOpen(); });
}

bool KnownLayouts::haveLoggers() const
{
    return std::any_of(m_layouts.begin(), m_layouts.end(),
                       [](const LogLayout &layout) { return layout.hasLogger(); });
}

} // namespace Vorn::Workbench
