#ifndef VORN_WORKBENCH_SCENARIOLINE_H
#define VORN_WORKBENCH_SCENARIOLINE_H

#include "Diagnostic.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// One word of a line: `press`, `"a b"` or `name="a b"`.
struct ScenarioWord
{
    QString text; ///< without the quotes
    int column = 1; ///< from 1, in characters
    bool isQuoted = false; ///< starts with a quote, so it is never a keyword
    QString option; ///< "name" of `name=value`; empty for other words
    QString value; ///< what follows the equals sign
    int valueColumn = 1;
};

/// A line of a scenario, read word by word. Only its first error is reported: the others usually
/// follow from it.
class ScenarioLine
{
public:
    /// Splits the line into words; an unterminated quote is an error.
    ScenarioLine(const QString &line, const QString &file, int number, Diagnostics *diagnostics);

    /// The line without indentation and comment.
    const QString &text() const { return m_text; }
    int number() const { return m_number; }
    const QString &file() const { return m_file; }
    /// The path of a file that the line names: relative to the folder of the line's own file.
    QString pathTo(const QString &name) const;

    bool isOk() const { return m_isOk; }
    bool atEnd() const { return m_next >= m_words.size(); }

    /// The next word, without taking it; null at the end.
    const ScenarioWord *peek() const { return atEnd() ? nullptr : &m_words[m_next]; }
    /// Takes the next word. At the end it returns null and reports that @p what is missing.
    const ScenarioWord *take(const QString &what);
    /// Takes the next word if it is @p keyword.
    bool takeKeyword(QLatin1String keyword);
    /// Takes a duration, up to the longest one allowed.
    std::optional<qint64> takeDuration();
    /// Ends the step: words that are left are an error.
    void finish();

    void error(int column, const QString &message);
    /// At the word taken last.
    void error(const QString &message);
    /// "unknown key 'KEY_INOF', did you mean 'KEY_INFO'?"
    void unknown(int column, const QString &what, const QString &text, const QStringList &known);

private:
    void split(const QString &line);

    const QString m_file;
    const int m_number;
    Diagnostics *const m_diagnostics;
    QString m_text;
    QVector<ScenarioWord> m_words;
    int m_next = 0;
    int m_endColumn = 1;
    bool m_isOk = true;
};

} // namespace Vorn::Workbench

#endif
