#include "LogLayout.h"

#include "Quoting.h"

#include <utility>

namespace Vorn::Workbench {

namespace {

constexpr qint64 second = 1'000'000;
constexpr qint64 quarter = 900 * second;

/// The time of day without a date that the program logged is more exact than the journal's time,
/// but may be one of another zone. All zones are quarters of an hour apart, so the parts of a
/// quarter tell what the difference is.
void refine(LogStamp *outer, const LogStamp &inner)
{
    qint64 difference = (inner.microseconds - outer->microseconds) % quarter;
    if (difference > quarter / 2)
        difference -= quarter;
    if (difference < -quarter / 2)
        difference += quarter;
    outer->microseconds += difference;
}

/// What a message within a line adds to what is known from around it.
void add(const LogFields &inner, LogFields *fields)
{
    if (inner.stamp && inner.hasFraction && !fields->hasFraction && fields->stamp) {
        if (inner.stamp->day != 0 || inner.stamp->isSinceEpoch)
            fields->stamp = inner.stamp;
        else
            refine(&*fields->stamp, *inner.stamp);
    }
    if (!fields->stamp)
        fields->stamp = inner.stamp;
    if (fields->pid.empty())
        fields->pid = inner.pid;
    fields->level = inner.level;
    fields->logger = inner.logger;
    fields->thread = inner.thread;
    fields->message = inner.message;
    fields->isUnevenlyFilled = inner.isUnevenlyFilled;
}

} // namespace

LogLayout::LogLayout(std::optional<JournalLayout> outer, LogPattern pattern)
    : m_outer(std::move(outer))
    , m_pattern(std::move(pattern))
{ }

LogLayout::Fit LogLayout::parse(std::string_view line, LogFields *fields)
{
    if (!m_outer)
        return m_pattern.parse(line, fields) ? Fit::Whole : Fit::None;
    if (!m_outer->parse(line, fields))
        return Fit::None;
    LogFields inner;
    if (fields->lost > 0 || !m_pattern.parse(fields->message, &inner))
        return Fit::OuterOnly;
    add(inner, fields);
    return Fit::Whole;
}

QString LogLayout::text() const
{
    // In full, so that it can be copied into an option.
    const QString pattern = QStringLiteral("pattern '%1'").arg(printable(m_pattern.text()));
    return m_outer ? m_outer->name() + QStringLiteral(", in it the ") + pattern : pattern;
}

} // namespace Vorn::Workbench
