#include "LogPattern.h"

#include "LibrarySigns.h"
#include "LogPatternCompiler.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

/// A context may be long, but what is before the message is no novel.
constexpr std::size_t maxFieldSize = 1024;
/// Patterns with many parts fit a hostile line in more ways than anybody wants to wait for.
constexpr int maxAttempts = 500;

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

std::optional<qint64> numberIn(std::string_view digits)
{
    const bool isNegative = !digits.empty() && digits.front() == '-';
    digits.remove_prefix(isNegative ? 1 : 0);
    constexpr std::size_t maxDigits = 15; // in microseconds, it still fits
    if (digits.empty() || digits.size() > maxDigits)
        return std::nullopt;
    qint64 number = 0;
    for (const char digit : digits)
        number = number * 10 + (digit - '0');
    return isNegative ? -number : number;
}

std::string_view withoutPadding(std::string_view text, bool isLeftAligned)
{
    if (isLeftAligned)
        return text.substr(0, text.find_last_not_of(' ') + 1);
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

} // namespace

/// Tries the ways to divide one line among the parts.
class LogPattern::Matcher
{
public:
    Matcher(const std::vector<Part> &parts, LogFields *fields)
        : m_parts(parts)
        , m_fields(fields)
    { }

    bool match(std::size_t index, std::string_view rest);

private:
    bool matchLevel(std::size_t index, std::string_view rest);
    bool matchTime(std::size_t index, std::string_view rest);
    bool matchNumber(std::size_t index, std::string_view rest);
    bool matchMessage(std::size_t index, std::string_view rest);
    bool matchText(std::size_t index, std::string_view rest);
    bool matchRest(std::size_t index, std::string_view value, std::string_view rest);
    bool matchPadded(std::size_t index, std::size_t size, std::string_view rest);
    bool store(const Part &part, std::string_view value);
    std::string_view literalAfter(std::size_t index) const;

    const std::vector<Part> &m_parts;
    LogFields *const m_fields;
    int m_attempts = 0;
};

bool LogPattern::Matcher::match(std::size_t index, std::string_view rest)
{
    if (index == m_parts.size())
        return rest.empty();
    if (++m_attempts > maxAttempts)
        return false;
    const Part &part = m_parts[index];
    switch (part.conversion) {
    case 0:
        return rest.substr(0, part.literal.size()) == part.literal
            && match(index + 1, rest.substr(part.literal.size()));
    case 'p':
        return matchLevel(index, rest);
    case 'd':
        return matchTime(index, rest);
    case 'i':
    case 'L':
    case 'r':
        return matchNumber(index, rest);
    case 'm':
        return matchMessage(index, rest);
    default:
        return matchText(index, rest);
    }
}

/// Levels are filled up on the other side, too, and not at all: a sample of lines with levels of
/// five letters does not show what a layout does with the others.
bool LogPattern::Matcher::matchLevel(std::size_t index, std::string_view rest)
{
    const Part &part = m_parts[index];
    if (part.minWidth > 0 && !rest.empty() && rest.front() == ' ') {
        rest = withoutPadding(rest, false);
        m_fields->isUnevenlyFilled = m_fields->isUnevenlyFilled || part.isLeftAligned;
    }
    for (std::size_t i = 0; i < levelNames.size(); ++i) {
        // log4cplus cuts the front off.
        std::string_view name = levelNames[i];
        name.remove_prefix(name.size() - std::min(name.size(), part.maxWidth));
        if (rest.substr(0, name.size()) != name)
            continue;
        m_fields->level = static_cast<LogLevel>(i);
        if (matchPadded(index, name.size(), rest))
            return true;
    }
    return false;
}

bool LogPattern::Matcher::matchTime(std::size_t index, std::string_view rest)
{
    const Part &part = m_parts[index];
    if (!part.isLeftAligned && part.minWidth > 0)
        rest = withoutPadding(rest, false);
    std::string_view behind = rest;
    LogStamp stamp;
    if (!part.format->take(&behind, &stamp))
        return false;
    m_fields->stamp = stamp;
    m_fields->hasFraction = part.format->hasFraction();
    return matchPadded(index, rest.size() - behind.size(), rest);
}

bool LogPattern::Matcher::matchNumber(std::size_t index, std::string_view rest)
{
    const Part &part = m_parts[index];
    if (!part.isLeftAligned && part.minWidth > 0)
        rest = withoutPadding(rest, false);
    // The time since the start is negative once the clock has been set back to before it.
    const bool isNegative = part.conversion == 'r' && !rest.empty() && rest.front() == '-';
    const std::size_t begin = isNegative ? 1 : 0;
    std::size_t size = begin;
    while (size < rest.size() && isDigit(rest[size]))
        ++size;
    return size > begin && store(part, rest.substr(0, size)) && matchPadded(index, size, rest);
}

/// Goes on behind a value at the front that the layout may have filled up with blanks.
bool LogPattern::Matcher::matchPadded(std::size_t index, std::size_t size, std::string_view rest)
{
    const Part &part = m_parts[index];
    if (part.isLeftAligned && size < part.minWidth) {
        const std::string_view padding = rest.substr(size, part.minWidth - size);
        if (padding.size() == part.minWidth - size
            && padding.find_first_not_of(' ') == std::string_view::npos
            && match(index + 1, rest.substr(part.minWidth)))
            return true;
        m_fields->isUnevenlyFilled = true;
    }
    return match(index + 1, rest.substr(size));
}

/// A message may contain whatever follows it in the pattern, so it is as long as it can be.
bool LogPattern::Matcher::matchMessage(std::size_t index, std::string_view rest)
{
    if (index + 1 == m_parts.size())
        return matchRest(index, rest, {});
    const std::string_view literal = literalAfter(index);
    for (std::size_t at = rest.rfind(literal); at != std::string_view::npos;
         at = rest.rfind(literal, at - 1))
    {
        if (matchRest(index, rest.substr(0, at), rest.substr(at)))
            return true;
        if (at == 0 || m_attempts > maxAttempts)
            return false;
    }
    return false;
}

/// All other texts end at the first place where the rest of the line fits.
bool LogPattern::Matcher::matchText(std::size_t index, std::string_view rest)
{
    const Part &part = m_parts[index];
    const std::string_view literal = literalAfter(index);
    if (literal.empty()) {
        const bool isLast = index + 1 == m_parts.size();
        const std::size_t size = isLast ? rest.size() : part.minWidth;
        return rest.size() >= size && matchRest(index, rest.substr(0, size), rest.substr(size));
    }
    const std::string_view searched = rest.substr(0, maxFieldSize);
    for (std::size_t at = searched.find(literal, part.minWidth); at != std::string_view::npos;
         at = searched.find(literal, at + 1))
    {
        if (matchRest(index, rest.substr(0, at), rest.substr(at)))
            return true;
        if (m_attempts > maxAttempts)
            return false;
    }
    return false;
}

bool LogPattern::Matcher::matchRest(std::size_t index, std::string_view value,
                                    std::string_view rest)
{
    const Part &part = m_parts[index];
    if (value.size() > std::max(part.maxWidth, part.minWidth))
        return false;
    if (part.minWidth > 0 && value.size() == part.minWidth)
        value = withoutPadding(value, part.isLeftAligned);
    return match(index + 1, rest) && store(part, value);
}

bool LogPattern::Matcher::store(const Part &part, std::string_view value)
{
    switch (part.conversion) {
    case 'c':
        m_fields->logger = value.size() == part.maxWidth ? completedLogger(value) : value;
        return true;
    case 'i':
        m_fields->pid = value;
        return true;
    case 'm':
        m_fields->message = value;
        return true;
    case 'r': {
        const std::optional<qint64> milliseconds = numberIn(value);
        if (milliseconds)
            m_fields->sinceStart = *milliseconds * 1000;
        return milliseconds.has_value();
    }
    case 'T':
        if (m_fields->thread.empty())
            m_fields->thread = value;
        return true;
    case 't':
        m_fields->thread = value;
        return true;
    default:
        return true;
    }
}

std::string_view LogPattern::Matcher::literalAfter(std::size_t index) const
{
    return index + 1 < m_parts.size() ? std::string_view(m_parts[index + 1].literal)
                                      : std::string_view();
}

std::optional<LogPattern> LogPattern::compile(const QString &pattern, Error *error)
{
    return LogPatternCompiler(pattern).compile(error);
}

bool LogPattern::parse(std::string_view line, LogFields *fields) const
{
    return Matcher(m_parts, fields).match(0, line);
}

bool LogPattern::has(char conversion) const
{
    return std::any_of(m_parts.begin(), m_parts.end(),
                       [conversion](const Part &part) { return part.conversion == conversion; });
}

} // namespace Vorn::Workbench
