#include "TimeInText.h"

#include "TimeFormat.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

namespace Vorn::Workbench {

namespace {

struct Alternative
{
    std::string_view text;
    TimeFormat format;
};

/// A part of a time; of those that fit, the first one is taken.
using Alternatives = std::vector<Alternative>;

Alternatives compiled(std::initializer_list<std::string_view> texts)
{
    Alternatives result;
    for (const std::string_view text : texts) {
        TimeFormat::Error error;
        result.push_back({text, *TimeFormat::compile(text, &error)});
    }
    return result;
}

const Alternatives &dates()
{
    static const Alternatives formats =
        compiled({"%Y-%m-%d", "%Y/%m/%d", "%Y.%m.%d", "%Y%m%d", "%d.%m.%Y", "%m/%d/%Y", "%d/%m/%Y",
                  "%m-%d-%Y", "%d-%m-%Y", "%m/%d/%y", "%d/%m/%y", "%d.%m.%y", "%y-%m-%d",
                  "%a %b %e %Y", "%d %b %Y", "%b %d %Y", "%b %d", "%b %e", "%m-%d"});
    return formats;
}

const Alternatives &separators()
{
    static const Alternatives texts = compiled({" - ", ", ", " ", "T", "_", "-", ":"});
    return texts;
}

const Alternatives &timesOfDay()
{
    static const Alternatives formats = compiled({"%H:%M:%S", "%H-%M-%S", "%H.%M.%S", "%H%M%S"});
    return formats;
}

const Alternatives &fractions()
{
    static const Alternatives formats = compiled({".%Q", ",%Q", ".%q", ",%q", ":%q", ".%f", ",%f"});
    return formats;
}

const Alternatives &zones()
{
    static const Alternatives formats = compiled({"%z", " %z", " UTC", " GMT"});
    return formats;
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

enum class Next { Anything, NoDigit };

/// Goes behind a part and adds it to the format; false if none fits.
bool take(const Alternatives &alternatives, Next next, std::string_view *text, std::string *format)
{
    for (const Alternative &alternative : alternatives) {
        std::string_view rest = *text;
        LogStamp stamp;
        if (!alternative.format.take(&rest, &stamp)
            || (next == Next::NoDigit && !rest.empty() && isDigit(rest.front())))
            continue;
        *text = rest;
        *format += alternative.text;
        return true;
    }
    return false;
}

/// "Sun Nov 22 08:57:56 2026", as C's own functions write it.
std::optional<TimeInText> usualForm(std::string_view text)
{
    static const Alternatives formats = compiled({"%c"});
    std::string format;
    std::string_view rest = text;
    if (!take(formats, Next::Anything, &rest, &format))
        return std::nullopt;
    return TimeInText{text.size() - rest.size(), QStringLiteral("%c"), QStringLiteral("%c")};
}

/// "1767348000.123"
std::optional<TimeInText> sinceEpoch(std::string_view text)
{
    constexpr std::size_t digitsOfSeconds = 10;
    std::string format;
    std::string_view rest = text.substr(std::min(digitsOfSeconds, text.size()));
    if (text.find_first_not_of("0123456789") != digitsOfSeconds || text.front() != '1'
        || !take(fractions(), Next::NoDigit, &rest, &format))
        return std::nullopt;
    const QString found = QStringLiteral("%s") + QString::fromStdString(format);
    return TimeInText{text.size() - rest.size(), found, found};
}

QString withDayFirst(QString format)
{
    if (format.startsWith(QStringLiteral("%m/%d")))
        return format.replace(0, 5, QStringLiteral("%d/%m"));
    if (format.startsWith(QStringLiteral("%m-%d-")))
        return format.replace(0, 5, QStringLiteral("%d-%m"));
    return format;
}

} // namespace

std::optional<TimeInText> timeAtFrontOf(std::string_view text)
{
    if (text.empty())
        return std::nullopt;
    for (const auto form : {usualForm, sinceEpoch}) {
        if (std::optional<TimeInText> found = form(text))
            return found;
    }
    std::string format;
    std::string_view rest = text;
    const bool hasDate = take(dates(), Next::NoDigit, &rest, &format);
    if (hasDate && !take(separators(), Next::Anything, &rest, &format))
        return std::nullopt;
    static const Alternatives timeAlone = compiled({"%H:%M:%S"});
    if (!take(hasDate ? timesOfDay() : timeAlone, Next::NoDigit, &rest, &format))
        return std::nullopt;
    take(fractions(), Next::NoDigit, &rest, &format);
    take(zones(), Next::Anything, &rest, &format);
    const QString found = QString::fromStdString(format);
    return TimeInText{text.size() - rest.size(), found, withDayFirst(found)};
}

} // namespace Vorn::Workbench
