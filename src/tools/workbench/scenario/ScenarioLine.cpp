#include "ScenarioLine.h"

#include "Diagnostic.h"
#include "Quoting.h"
#include "Suggestion.h"

#include <QRegularExpression>

namespace Vorn::Workbench {

namespace {

constexpr int longestQuotation = 60;

} // namespace

std::optional<qint64> milliseconds(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\A([0-9]{1,12})(?:\\.([0-9]{1,6}))?(ms|s|min|h)\\z"));
    const QRegularExpressionMatch match = pattern.match(text.left(longestQuotation));
    if (!match.hasMatch())
        return std::nullopt;
    const QString unit = match.captured(3);
    qint64 factor = 1;
    if (unit == QLatin1String("s"))
        factor = 1000;
    else if (unit == QLatin1String("min"))
        factor = 60LL * 1000;
    else if (unit == QLatin1String("h"))
        factor = 60LL * 60 * 1000;
    qint64 fraction = match.captured(2).toLongLong() * factor;
    for (int i = 0; i < match.captured(2).size(); ++i) {
        if (fraction % 10 != 0)
            return std::nullopt;
        fraction /= 10;
    }
    return match.captured(1).toLongLong() * factor + fraction;
}

std::optional<qint64> signedMilliseconds(const QString &text)
{
    const bool isNegative = text.startsWith(QLatin1Char('-'));
    const bool hasSign = isNegative || text.startsWith(QLatin1Char('+'));
    const std::optional<qint64> duration = milliseconds(hasSign ? text.mid(1) : text);
    if (!duration)
        return std::nullopt;
    return isNegative ? -*duration : *duration;
}

ScenarioLine::ScenarioLine(const QString &line, const QString &file, int number,
                           Diagnostics *diagnostics)
    : m_file(file)
    , m_number(number)
    , m_diagnostics(diagnostics)
{
    split(line);
}

void ScenarioLine::split(const QString &line)
{
    ScenarioWord word;
    bool isInWord = false;
    bool isInQuotes = false;
    int quoteColumn = 0;
    int column = 0;
    int end = 0;
    const auto append = [&word](QChar character) {
        word.text += character;
        if (!word.option.isEmpty())
            word.value += character;
    };
    const auto finishWord = [&] {
        if (isInWord)
            m_words.append(word);
        word = {};
        isInWord = false;
    };
    for (; end < line.size(); ++end) {
        const QChar character = line[end];
        // A character beyond the first 65536 is two here, and one to whoever counts.
        column += character.isLowSurrogate() ? 0 : 1;
        if (isInQuotes) {
            const bool isEscape = character == QLatin1Char('\\') && end + 1 < line.size()
                && (line[end + 1] == QLatin1Char('"') || line[end + 1] == QLatin1Char('\\'));
            if (isEscape) {
                append(line[++end]);
                ++column;
            } else if (character == QLatin1Char('"')) {
                isInQuotes = false;
            } else {
                append(character);
            }
            continue;
        }
        if (character == QLatin1Char('#'))
            break;
        if (character.isSpace()) {
            finishWord();
            continue;
        }
        if (!isInWord) {
            isInWord = true;
            word.column = column;
            word.isQuoted = character == QLatin1Char('"');
        }
        if (character == QLatin1Char('"')) {
            isInQuotes = true;
            quoteColumn = column;
        } else if (character == QLatin1Char('=') && word.option.isEmpty() && !word.isQuoted
                   && !word.text.isEmpty())
        {
            word.option = word.text;
            word.text += character;
            word.valueColumn = column + 1;
        } else {
            append(character);
        }
    }
    finishWord();
    m_text = line.left(end).trimmed();
    m_endColumn = column + (end < line.size() ? 0 : 1);
    if (isInQuotes)
        error(quoteColumn, QStringLiteral("this quote is not closed"));
}

const ScenarioWord *ScenarioLine::take(const QString &what)
{
    if (atEnd()) {
        error(m_endColumn, QStringLiteral("%1 is missing").arg(what));
        return nullptr;
    }
    return &m_words[m_next++];
}

bool ScenarioLine::takeKeyword(QLatin1String keyword)
{
    const ScenarioWord *word = peek();
    if (!word || word->isQuoted || word->text != keyword)
        return false;
    ++m_next;
    return true;
}

std::optional<qint64> ScenarioLine::takeDuration()
{
    const ScenarioWord *word = take(QStringLiteral("a duration like 1200ms or 1.5s"));
    if (!word)
        return std::nullopt;
    const std::optional<qint64> duration = milliseconds(word->text);
    if (!duration) {
        error(QStringLiteral("%1 is no duration; write one like 1200ms, 1.5s, 2min or 1h, in "
                             "whole milliseconds")
                  .arg(quoted(word->text)));
        return std::nullopt;
    }
    if (*duration > maxWait) {
        error(QStringLiteral("a duration is at most 7 days (168h)"));
        return std::nullopt;
    }
    return duration;
}

void ScenarioLine::finish()
{
    if (isOk() && !atEnd())
        error(peek()->column,
              QStringLiteral("unexpected %1 at the end of the step").arg(quoted(peek()->text)));
}

void ScenarioLine::error(int column, const QString &message)
{
    if (!m_isOk)
        return;
    m_isOk = false;
    Diagnostic diagnostic;
    diagnostic.file = m_file;
    diagnostic.line = m_number;
    diagnostic.column = column;
    diagnostic.message = message;
    m_diagnostics->append(diagnostic);
}

void ScenarioLine::error(const QString &message)
{
    error(m_next > 0 ? m_words[m_next - 1].column : 1, message);
}

void ScenarioLine::unknown(int column, const QString &what, const QString &text,
                           const QStringList &known)
{
    error(column,
          QStringLiteral("unknown %1 %2%3")
              .arg(what, quoted(text), suggestion(text.left(longestQuotation), known)));
}

} // namespace Vorn::Workbench
