#include "ScenarioLine.h"

#include "Durations.h"
#include "Quoting.h"
#include "ScenarioLimits.h"
#include "Suggestion.h"

#include <QDir>
#include <QFileInfo>

namespace Vorn::Workbench {

namespace {

// A word may be a megabyte long; its first characters are enough to find the name that was meant.
constexpr int longestName = 60;

} // namespace

ScenarioLine::ScenarioLine(const QString &line, const QString &file, int number,
                           Diagnostics *diagnostics)
    : m_file(file)
    , m_number(number)
    , m_diagnostics(diagnostics)
{
    split(line);
}

QString ScenarioLine::pathTo(const QString &name) const
{
    return QDir::cleanPath(
        QDir::isAbsolutePath(name) ? name : QFileInfo(m_file).path() + QLatin1Char('/') + name);
}

/*
 *            not blank                 "
 *   between ───────────▶ in a word ◀──────▶ in quotes     blanks and # are part of the word,
 *    words  ◀───────────     │                 │          \" is a quote and \\ a backslash
 *      │ #     blank         │ #               │ end of the line
 *      ▼                     ▼                 ▼
 *   comment: the rest is ignored             error
 *
 *  Quotes do not end a word: name="a b" is one word. The first unquoted = of a word that does not
 *  start with a quote separates an option from its value.
 */
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
        // A character beyond U+FFFF is two QChars but one column in an editor.
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
        } else if (character == QLatin1Char('=') && word.option.isEmpty() && !word.isQuoted) {
            // Without a name before it, the word stays one without an option.
            word.option = word.text;
            word.text += character;
            word.valueColumn = column + 1;
        } else {
            append(character);
        }
    }
    finishWord();
    m_text = line.left(end).trimmed();
    // Where a missing word is reported: after the line's last character, or at its comment.
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
        error(QStringLiteral("%1 is not a duration; write one like 1200ms, 1.5s, 2min or 1h, in "
                             "whole milliseconds, at most 7 days")
                  .arg(quoted(word->text)));
        return std::nullopt;
    }
    if (*duration > ScenarioLimit::wait) {
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
    constexpr int shortList = 6;
    const QString start = text.left(longestName);
    error(column,
          QStringLiteral("unknown %1 %2%3")
              .arg(what, quoted(text),
                   known.size() <= shortList ? suggestionOrList(start, known)
                                             : suggestion(start, known)));
}

} // namespace Vorn::Workbench
