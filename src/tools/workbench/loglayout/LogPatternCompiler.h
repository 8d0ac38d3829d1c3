#ifndef VORN_WORKBENCH_LOGPATTERNCOMPILER_H
#define VORN_WORKBENCH_LOGPATTERNCOMPILER_H

#include "LogPattern.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// Makes a LogPattern of its text.
class LogPatternCompiler
{
public:
    explicit LogPatternCompiler(const QString &pattern);

    std::optional<LogPattern> compile(LogPattern::Error *error);

private:
    bool atEnd() const { return m_at >= m_text.size(); }
    char current() const { return atEnd() ? '\0' : m_text.at(m_at); }

    bool compileConversion();
    bool compileWidths(LogPattern::Part *part);
    bool compileNumber(std::size_t *number);
    bool compileBraces(QByteArray *content, int *place);
    bool compileTime(LogPattern::Part *part);
    bool checkEnd();
    bool checkSeparation();
    void appendLiteral(char character);
    bool fail(int place, const QString &message);

    const QByteArray m_text;
    int m_at = 0;
    LogPattern m_pattern;
    std::vector<int> m_places; ///< of the parts in the text
    LogPattern::Error m_error;
};

} // namespace Vorn::Workbench

#endif
