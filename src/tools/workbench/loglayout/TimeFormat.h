#ifndef VORN_WORKBENCH_TIMEFORMAT_H
#define VORN_WORKBENCH_TIMEFORMAT_H

#include <QString>
#include <QtGlobal>

#include <optional>
#include <string_view>
#include <vector>

namespace Vorn::Workbench {

/// In microseconds since the epoch: 2111, later than which no session can be.
constexpr qint64 endOfTimes = qint64{4'449'513'600} * 1'000'000;

/// A time as a line of a log states it. What the line does not state is 0 or missing.
struct LogStamp
{
    int year = 0;
    int month = 0; ///< from 1
    int day = 0; ///< from 1; of the year if there is no month
    qint64 microseconds = 0; ///< since midnight, or since the epoch
    bool isSinceEpoch = false;
    std::optional<int> offset; ///< in seconds east of UTC
};

/// The format of a time, as in log4cplus's "%D{%Y-%m-%d %H:%M:%S,%q}". Further to log4cplus's own
/// conversions, "%f" is a fraction of a second with any number of digits.
class TimeFormat
{
public:
    struct Error
    {
        int offset = 0; ///< in the format, from 0
        QString message;
    };

    static std::optional<TimeFormat> compile(std::string_view format, Error *error);

    /// Removes a time from the front of a text; false, and the text as it was, if there is none.
    bool take(std::string_view *text, LogStamp *stamp) const;

    bool hasFraction() const;

private:
    struct Step
    {
        char conversion = 0; ///< 0: the literal
        char literal = 0;
    };

    bool append(std::string_view format, int offset, Error *error);

    std::vector<Step> m_steps;
};

} // namespace Vorn::Workbench

#endif
