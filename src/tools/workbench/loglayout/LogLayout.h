#ifndef VORN_WORKBENCH_LOGLAYOUT_H
#define VORN_WORKBENCH_LOGLAYOUT_H

#include "JournalLayout.h"
#include "LogFields.h"
#include "LogPattern.h"

#include <QString>

#include <optional>
#include <string_view>

namespace Vorn::Workbench {

/// How the lines of a log are written: by a pattern, which the journal or syslog may have put
/// something around.
class LogLayout
{
public:
    LogLayout(std::optional<JournalLayout> outer, LogPattern pattern);

    enum class Fit { None, OuterOnly, Whole };

    /// Where only the outer part fits, which is so for the lines of other programs, it is the
    /// fields without level and logger. The texts are valid until the next call.
    Fit parse(std::string_view line, LogFields *fields);

    bool hasLogger() const { return m_pattern.hasLogger(); }
    bool hasTime() const { return m_outer || m_pattern.hasTime(); }
    /// Whether the sample left open which of two numbers is the day and which the month.
    void setDayOpen(bool isOpen) { m_isDayOpen = isOpen; }
    bool isDayOpen() const { return m_isDayOpen; }
    /// "journal (short), in it the pattern '%p - %m%n'"
    QString text() const;

private:
    std::optional<JournalLayout> m_outer;
    LogPattern m_pattern;
    bool m_isDayOpen = false;
};

} // namespace Vorn::Workbench

#endif
