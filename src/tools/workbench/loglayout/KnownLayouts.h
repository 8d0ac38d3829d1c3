#ifndef VORN_WORKBENCH_KNOWNLAYOUTS_H
#define VORN_WORKBENCH_KNOWNLAYOUTS_H

#include "LogLayout.h"

#include <QStringList>

#include <vector>

namespace Vorn::Workbench {

/// The layouts that lines of a log were written in so far: a product may be updated, and two
/// programs may write one log.
class KnownLayouts
{
public:
    bool isEmpty() const { return m_layouts.empty(); }
    bool isFull() const { return m_layouts.size() >= maxLayouts; }

    /// False if it is known already.
    bool add(const LogLayout &layout);

    /// Takes a line apart by the layout of the line before or, if it does not fit, by another one.
    LogLayout::Fit parse(std::string_view line, LogFields *fields);

    const LogLayout &current() const { return m_layouts.at(m_current); }
    QStringList texts() const;
    /// Whether any of them has times, or the names of loggers.
    bool haveTimes() const;
    bool haveLoggers() const;
    bool areDaysOpen() const; ///< see LogLayout::isDayOpen()

private:
    static constexpr std::size_t maxLayouts = 8;

    std::vector<LogLayout> m_layouts;
    std::size_t m_current = 0;
};

} // namespace Vorn::Workbench

#endif
