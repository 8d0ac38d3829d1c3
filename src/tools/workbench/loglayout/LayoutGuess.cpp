#include "LayoutGuess.h"

#include "LibrarySigns.h"
#include "PatternGuess.h"

#include <QHash>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

/// The first lines of the library show as much as all of them.
constexpr std::size_t maxShowingLines = 20;

/// How much a line speaks for the layout that has taken it apart.
int weightOf(const LogFields &fields)
{
    int weight = 2;
    if (beginsLikeLibraryMessage(fields.message))
        weight += 20;
    if (isLibraryLogger(fields.logger))
        weight += 10;
    if (fields.level)
        weight += 2;
    if (fields.stamp || fields.sinceStart)
        weight += 2;
    // So that no damaged line makes a pattern win that passes over the dates of all lines.
    if (fields.stamp && fields.stamp->day > 0)
        weight += 4;
    if (fields.isUnevenlyFilled)
        weight -= 1;
    return weight;
}

/// The same layout with days and months the other way round; the same text if it has none.
QString exchanged(QString text)
{
    for (const auto separator : {QLatin1Char('/'), QLatin1Char('-')}) {
        const QString monthFirst = QStringLiteral("{%m%1%d%1").arg(separator);
        const QString dayFirst = QStringLiteral("{%d%1%m%1").arg(separator);
        if (text.contains(monthFirst))
            return text.replace(monthFirst, dayFirst);
        if (text.contains(dayFirst))
            return text.replace(dayFirst, monthFirst);
    }
    return text;
}

class Search
{
public:
    Search(const std::vector<std::string> &sample, const std::optional<LogPattern> &given)
        : m_sample(sample)
        , m_given(given)
    { }

    std::optional<LogLayout> best();

private:
    void tryPatternsOf(const std::optional<JournalLayout> &outer, std::string_view text);
    void tryPattern(const std::optional<JournalLayout> &outer, const LogPattern &pattern);

    const std::vector<std::string> &m_sample;
    const std::optional<LogPattern> &m_given;
    QHash<QString, int> m_weights; ///< of the layouts tried, by their texts
    std::optional<LogLayout> m_best;
    int m_bestWeight = 0;
};

std::optional<LogLayout> Search::best()
{
    std::size_t showing = 0;
    for (const std::string &line : m_sample) {
        std::optional<JournalLayout> outer = JournalLayout::of(line);
        LogFields fields;
        if (outer)
            outer->parse(line, &fields);
        const std::string_view text = outer ? fields.message : std::string_view(line);
        if (m_given) {
            tryPattern(outer, *m_given);
            tryPattern(std::nullopt, *m_given);
        } else if (libraryMessageIn(text)) {
            // With what is around it first, so that it wins if the pattern could be both.
            tryPatternsOf(outer, text);
            if (outer)
                tryPatternsOf(std::nullopt, line);
            ++showing;
        }
        if (showing == maxShowingLines)
            break;
    }
    if (m_best) {
        const QString other = exchanged(m_best->text());
        m_best->setDayOpen(other != m_best->text() && m_weights.value(other) == m_bestWeight);
    }
    return m_best;
}

void Search::tryPatternsOf(const std::optional<JournalLayout> &outer, std::string_view text)
{
    const std::optional<std::size_t> message = libraryMessageIn(text);
    if (!message)
        return;
    const QStringList candidates = patternsFor(text, *message);
    for (const QString &candidate : candidates) {
        LogPattern::Error error;
        const std::optional<LogPattern> pattern = LogPattern::compile(candidate, &error);
        if (pattern)
            tryPattern(outer, *pattern);
    }
}

void Search::tryPattern(const std::optional<JournalLayout> &outer, const LogPattern &pattern)
{
    LogLayout layout(outer, pattern);
    const QString key = layout.text();
    if (m_weights.contains(key))
        return;
    int weight = 0;
    for (const std::string &line : m_sample) {
        LogFields fields;
        const LogLayout::Fit fit = layout.parse(line, &fields);
        if (fit == LogLayout::Fit::Whole)
            weight += weightOf(fields);
        else if (fit == LogLayout::Fit::OuterOnly)
            weight += 1;
    }
    m_weights.insert(key, weight);
    if (weight > m_bestWeight) {
        m_bestWeight = weight;
        m_best = layout;
    }
}

} // namespace

std::optional<LogLayout> guessLayout(const std::vector<std::string> &sample,
                                     const std::optional<LogPattern> &given)
{
    return Search(sample, given).best();
}

} // namespace Vorn::Workbench
