#include "LogPatternCompiler.h"

#include "TextPosition.h"

namespace Vorn::Workbench {

namespace {

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Values of these show by themselves where they end, or have nothing before them that matters.
bool isSelfDelimiting(char conversion)
{
    return conversion == 'd' || conversion == 'p' || conversion == 'i' || conversion == 'r'
        || conversion == 'L';
}

} // namespace

LogPatternCompiler::LogPatternCompiler(const QString &pattern)
    : m_text(pattern.toUtf8())
{
    m_pattern.m_text = pattern;
}

std::optional<LogPattern> LogPatternCompiler::compile(LogPattern::Error *error)
{
    while (!atEnd()) {
        const char character = m_text.at(m_at);
        if (character != '%') {
            appendLiteral(character);
            ++m_at;
        } else if (!compileConversion()) {
            *error = m_error;
            return std::nullopt;
        }
    }
    if (!checkEnd() || !checkSeparation()) {
        *error = m_error;
        return std::nullopt;
    }
    return m_pattern;
}

bool LogPatternCompiler::compileConversion()
{
    const int start = m_at++;
    LogPattern::Part part;
    if (current() == '%') {
        appendLiteral('%');
        ++m_at;
        return true;
    }
    if (!compileWidths(&part))
        return false;
    if (atEnd())
        return fail(start,
                    QStringLiteral("a conversion without its letter; write '%%' for a "
                                   "percent sign"));
    const char conversion = m_text.at(m_at++);
    part.conversion = conversion == 'D' ? 'd' : conversion;
    if (part.conversion == 'd') {
        if (!compileTime(&part))
            return false;
    } else if (conversion == 'c' || conversion == 'E' || conversion == 'X') {
        QByteArray ignored;
        int place = 0;
        if (!compileBraces(&ignored, &place))
            return false;
    } else if (QByteArray("bFhHiLlMmnprTtx").indexOf(conversion) < 0) {
        const QString text = static_cast<unsigned char>(conversion) < 0x80
            ? QString(QLatin1Char(conversion))
            : QString();
        return fail(start, QStringLiteral("log4cplus has no conversion '%%1'").arg(text));
    }
    m_pattern.m_parts.push_back(part);
    m_places.push_back(start);
    return true;
}

/// "-20.30"
bool LogPatternCompiler::compileWidths(LogPattern::Part *part)
{
    if (current() == '-') {
        part->isLeftAligned = true;
        ++m_at;
    }
    if (isDigit(current()) && !compileNumber(&part->minWidth))
        return false;
    if (current() != '.')
        return true;
    const int dot = m_at++;
    if (!isDigit(current()))
        return fail(dot, QStringLiteral("the greatest width is missing behind '.'"));
    return compileNumber(&part->maxWidth);
}

bool LogPatternCompiler::compileNumber(std::size_t *number)
{
    constexpr std::size_t limit = 1000;
    const int start = m_at;
    *number = 0;
    for (; isDigit(current()); ++m_at) {
        *number = *number * 10 + static_cast<std::size_t>(current() - '0');
        if (*number > limit)
            return fail(start, QStringLiteral("a width above %1").arg(limit));
    }
    return true;
}

bool LogPatternCompiler::compileBraces(QByteArray *content, int *place)
{
    if (current() != '{')
        return true;
    const int end = static_cast<int>(m_text.indexOf('}', m_at));
    if (end < 0)
        return fail(m_at, QStringLiteral("'{' without its '}'"));
    *place = m_at + 1;
    *content = m_text.mid(*place, end - *place);
    m_at = end + 1;
    return true;
}

bool LogPatternCompiler::compileTime(LogPattern::Part *part)
{
    QByteArray format("%Y-%m-%d %H:%M:%S");
    int place = m_at;
    if (!compileBraces(&format, &place))
        return false;
    TimeFormat::Error error;
    part->format =
        TimeFormat::compile({format.constData(), static_cast<std::size_t>(format.size())}, &error);
    return part->format || fail(place + error.offset, error.message);
}

bool LogPatternCompiler::checkEnd()
{
    std::vector<LogPattern::Part> &parts = m_pattern.m_parts;
    // The line is read without its end.
    if (!parts.empty() && parts.back().conversion == 'n')
        parts.pop_back();
    bool hasMessage = false;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (parts[i].conversion == 'n')
            return fail(m_places[i],
                        QStringLiteral("'%n' before the end: one message would be several lines, "
                                       "which cannot be read"));
        if (parts[i].conversion == 'm' && hasMessage)
            return fail(m_places[i], QStringLiteral("'%m' for the second time"));
        hasMessage = hasMessage || parts[i].conversion == 'm';
    }
    return hasMessage
        || fail(0, QStringLiteral("no '%m': without its messages a log says nothing"));
}

bool LogPatternCompiler::checkSeparation()
{
    const std::vector<LogPattern::Part> &parts = m_pattern.m_parts;
    for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
        const bool isOpen = parts[i].conversion != 0 && !isSelfDelimiting(parts[i].conversion);
        const bool hasWidth = parts[i].minWidth > 0 && parts[i].conversion != 'm';
        if (isOpen && !hasWidth && parts[i + 1].conversion != 0)
            return fail(m_places[i + 1],
                        QStringLiteral("nothing tells where '%%1' ends and '%%2' begins")
                            .arg(QLatin1Char(parts[i].conversion))
                            .arg(QLatin1Char(parts[i + 1].conversion)));
    }
    return true;
}

void LogPatternCompiler::appendLiteral(char character)
{
    std::vector<LogPattern::Part> &parts = m_pattern.m_parts;
    if (parts.empty() || parts.back().conversion != 0) {
        parts.emplace_back();
        m_places.push_back(m_at);
    }
    parts.back().literal += character;
}

bool LogPatternCompiler::fail(int place, const QString &message)
{
    m_error = {positionOf(m_text, place).column, message};
    return false;
}

} // namespace Vorn::Workbench
