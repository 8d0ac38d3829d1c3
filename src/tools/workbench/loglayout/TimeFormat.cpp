#include "TimeFormat.h"

#include <algorithm>
#include <array>

namespace Vorn::Workbench {

namespace {

constexpr std::array<const char *, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<const char *, 7> weekdays = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
constexpr qint64 second = 1'000'000;

/// Damaged lines may state any year; clocks that nobody has set state one of these.
constexpr int firstYear = 1900;
constexpr int lastYear = 2110;

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// A number of exactly so many digits.
bool takeDigits(std::string_view *text, std::size_t count, int *number)
{
    if (text->size() < count)
        return false;
    int value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (!isDigit((*text)[i]))
            return false;
        value = value * 10 + ((*text)[i] - '0');
    }
    text->remove_prefix(count);
    *number = value;
    return true;
}

bool takeDigits(std::string_view *text, std::size_t count, int *number, int min, int max)
{
    return takeDigits(text, count, number) && *number >= min && *number <= max;
}

/// Two characters, the first of which may be a blank.
bool takePadded(std::string_view *text, int *number, int min, int max)
{
    if (!text->empty() && text->front() == ' ') {
        text->remove_prefix(1);
        return takeDigits(text, 1, number, min, max);
    }
    return takeDigits(text, 2, number, min, max);
}

template <std::size_t count>
int takeName(std::string_view *text, const std::array<const char *, count> &names)
{
    const auto found = std::find(names.begin(), names.end(), text->substr(0, 3));
    if (found == names.end())
        return 0;
    text->remove_prefix(3);
    return static_cast<int>(found - names.begin()) + 1;
}

bool takeChar(std::string_view *text, char character)
{
    if (text->empty() || text->front() != character)
        return false;
    text->remove_prefix(1);
    return true;
}

/// "+0100", "+01:00" or "Z".
bool takeOffset(std::string_view *text, LogStamp *stamp)
{
    if (takeChar(text, 'Z')) {
        stamp->offset = 0;
        return true;
    }
    const bool isWest = !text->empty() && text->front() == '-';
    int hours = 0;
    int minutes = 0;
    if (!takeChar(text, isWest ? '-' : '+') || !takeDigits(text, 2, &hours, 0, 23))
        return false;
    takeChar(text, ':');
    if (!takeDigits(text, 2, &minutes, 0, 59))
        return false;
    stamp->offset = (isWest ? -60 : 60) * (hours * 60 + minutes);
    return true;
}

bool takeZoneName(std::string_view *text, LogStamp *stamp)
{
    const auto *const end = std::find_if(text->begin(), text->end(), [](char character) {
        return (character < 'A' || character > 'Z') && (character < 'a' || character > 'z');
    });
    const std::string_view name = text->substr(0, static_cast<std::size_t>(end - text->begin()));
    // The other names mean different offsets in different countries.
    if (name == "UTC" || name == "GMT" || name == "Z")
        stamp->offset = 0;
    text->remove_prefix(name.size());
    return !name.empty();
}

bool takeFraction(std::string_view *text, LogStamp *stamp)
{
    qint64 weight = second;
    std::size_t count = 0;
    for (; count < text->size() && count < 9 && isDigit((*text)[count]); ++count) {
        weight /= 10;
        stamp->microseconds += ((*text)[count] - '0') * weight;
    }
    text->remove_prefix(count);
    return count > 0;
}

bool takeEpoch(std::string_view *text, LogStamp *stamp)
{
    qint64 seconds = 0;
    std::size_t count = 0;
    for (; count < text->size() && count < 12 && isDigit((*text)[count]); ++count)
        seconds = seconds * 10 + ((*text)[count] - '0');
    text->remove_prefix(count);
    stamp->microseconds += seconds * second;
    stamp->isSinceEpoch = true;
    return count > 0 && stamp->microseconds < endOfTimes;
}

/// What the conversions stand for that are short for others.
const char *expansion(char conversion)
{
    switch (conversion) {
    case 'c':
        return "%a %b %e %H:%M:%S %Y";
    case 'D':
    case 'x':
        return "%m/%d/%y";
    case 'F':
        return "%Y-%m-%d";
    case 'R':
        return "%H:%M";
    case 'r':
        return "%I:%M:%S %p";
    case 'T':
    case 'X':
        return "%H:%M:%S";
    default:
        return nullptr;
    }
}

bool takeDate(char conversion, std::string_view *text, LogStamp *stamp)
{
    switch (conversion) {
    case 'Y':
        return takeDigits(text, 4, &stamp->year, firstYear, lastYear);
    case 'y': {
        const bool isTaken = takeDigits(text, 2, &stamp->year);
        // As POSIX has it.
        stamp->year += stamp->year < 69 ? 2000 : 1900;
        return isTaken;
    }
    case 'm':
        return takeDigits(text, 2, &stamp->month, 1, 12);
    case 'b':
    case 'h':
        stamp->month = takeName(text, months);
        return stamp->month > 0;
    case 'd':
        return takeDigits(text, 2, &stamp->day, 1, 31);
    case 'e':
        return takePadded(text, &stamp->day, 1, 31);
    case 'j':
        return takeDigits(text, 3, &stamp->day, 1, 366);
    case 'a':
        return takeName(text, weekdays) > 0;
    default:
        return false;
    }
}

/// An hour of a clock face, and which half of the day it is in, each as far as the line states it.
struct HalfDay
{
    std::optional<int> hour;
    std::optional<bool> isAfternoon;
};

/// An hour that is stated by a clock of 24 hours says by itself which half of the day it is in.
int hoursOf(const HalfDay &half)
{
    if (!half.hour || !half.isAfternoon)
        return half.hour.value_or(0);
    return *half.hour % 12 + (*half.isAfternoon ? 12 : 0);
}

bool takeTime(char conversion, std::string_view *text, LogStamp *stamp, HalfDay *half)
{
    int number = 0;
    bool isTaken = false;
    switch (conversion) {
    case 'H':
        isTaken = takeDigits(text, 2, &number, 0, 23);
        stamp->microseconds += qint64{number} * 3600 * second;
        return isTaken;
    case 'k':
        isTaken = takePadded(text, &number, 0, 23);
        stamp->microseconds += qint64{number} * 3600 * second;
        return isTaken;
    case 'I':
        isTaken = takeDigits(text, 2, &number, 1, 12);
        half->hour = number;
        return isTaken;
    case 'l':
        isTaken = takePadded(text, &number, 1, 12);
        half->hour = number;
        return isTaken;
    case 'p':
        half->isAfternoon = text->substr(0, 2) == "PM";
        isTaken = *half->isAfternoon || text->substr(0, 2) == "AM";
        text->remove_prefix(isTaken ? 2 : 0);
        return isTaken;
    case 'M':
        isTaken = takeDigits(text, 2, &number, 0, 59);
        stamp->microseconds += qint64{number} * 60 * second;
        return isTaken;
    case 'S': // with a leap second
        isTaken = takeDigits(text, 2, &number, 0, 60);
        stamp->microseconds += number * second;
        return isTaken;
    default:
        return false;
    }
}

bool takePart(char conversion, std::string_view *text, LogStamp *stamp, HalfDay *half)
{
    int number = 0;
    switch (conversion) {
    case 'q':
        if (!takeDigits(text, 3, &number))
            return false;
        stamp->microseconds += qint64{number} * 1000;
        return true;
    case 'Q': { // log4cplus writes milliseconds and their fraction: "123.456"
        int fraction = 0;
        if (!takeDigits(text, 3, &number) || !takeChar(text, '.')
            || !takeDigits(text, 3, &fraction))
            return false;
        stamp->microseconds += number * 1000 + fraction;
        return true;
    }
    case 'f':
        return takeFraction(text, stamp);
    case 's':
        return takeEpoch(text, stamp);
    case 'z':
        return takeOffset(text, stamp);
    case 'Z':
        return takeZoneName(text, stamp);
    default:
        return takeDate(conversion, text, stamp) || takeTime(conversion, text, stamp, half);
    }
}

} // namespace

std::optional<TimeFormat> TimeFormat::compile(std::string_view format, Error *error)
{
    TimeFormat result;
    if (!result.append(format, 0, error))
        return std::nullopt;
    return result;
}

bool TimeFormat::append(std::string_view format, int offset, Error *error)
{
    constexpr std::string_view conversions = "YymbhdejaHkIlpMSqQfszZ";
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') {
            m_steps.push_back({0, format[i]});
            continue;
        }
        const int place = offset + static_cast<int>(i);
        const char conversion = ++i < format.size() ? format[i] : '\0';
        if (conversion == '%') {
            m_steps.push_back({0, '%'});
        } else if (const char *parts = expansion(conversion)) {
            append(parts, place, error);
        } else if (conversions.find(conversion) != std::string_view::npos) {
            m_steps.push_back({conversion, 0});
        } else {
            const std::string_view rest = format.substr(i);
            const QString text = QString::fromUtf8(rest.data(), static_cast<int>(rest.size()));
            *error = {place,
                      text.isEmpty()
                          ? QStringLiteral("a time ends with '%'; write '%%' for a percent sign")
                          : QStringLiteral("'%%1' of a time cannot be read back").arg(text.at(0))};
            return false;
        }
    }
    return true;
}

bool TimeFormat::take(std::string_view *text, LogStamp *stamp) const
{
    std::string_view rest = *text;
    LogStamp result;
    HalfDay half;
    for (const Step &step : m_steps) {
        const bool isTaken = step.conversion == 0
            ? takeChar(&rest, step.literal)
            : takePart(step.conversion, &rest, &result, &half);
        if (!isTaken)
            return false;
    }
    result.microseconds += qint64{hoursOf(half)} * 3600 * second;
    *stamp = result;
    *text = rest;
    return true;
}

bool TimeFormat::hasFraction() const
{
    return std::any_of(m_steps.begin(), m_steps.end(), [](const Step &step) {
        return step.conversion == 'q' || step.conversion == 'Q' || step.conversion == 'f';
    });
}

} // namespace Vorn::Workbench
