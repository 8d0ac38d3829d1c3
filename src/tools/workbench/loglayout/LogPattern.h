#ifndef VORN_WORKBENCH_LOGPATTERN_H
#define VORN_WORKBENCH_LOGPATTERN_H

#include "LogFields.h"
#include "TimeFormat.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Vorn::Workbench {

/// A conversion pattern of log4cplus's PatternLayout, read backwards: it takes the lines apart that
/// the layout puts together. The layouts without a pattern are patterns, too: TTCCLayout is
/// "%r [%t] %p %c <%x> - %m%n".
class LogPattern
{
public:
    struct Error
    {
        int column = 0; ///< in characters, from 1
        QString message;
    };

    static std::optional<LogPattern> compile(const QString &pattern, Error *error);

    /// False if the line does not fit.
    bool parse(std::string_view line, LogFields *fields) const;

    const QString &text() const { return m_text; }
    bool hasLogger() const { return has('c'); }
    bool hasTime() const { return has('d') || has('r'); }

private:
    friend class LogPatternCompiler;
    class Matcher;

    struct Part
    {
        char conversion = 0; ///< 0: a literal; 'd' also stands for 'D'
        std::string literal;
        std::size_t minWidth = 0;
        std::size_t maxWidth = std::string::npos;
        bool isLeftAligned = false;
        std::optional<TimeFormat> format;
    };

    bool has(char conversion) const;

    QString m_text;
    std::vector<Part> m_parts;
};

} // namespace Vorn::Workbench

#endif
