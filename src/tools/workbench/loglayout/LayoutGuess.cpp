#include "LayoutGuess.h"

#include "LibrarySigns.h"
#include "PatternGuess.h"

#include <QSet>

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
    if (fields.isUnevenlyFilled)
        weight -= 1;
    return weight;
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
    QSet<QString> m_tried;
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
    return m_best;
}

void Search::tryPatternsOf(const std::optional<JournalLayout> &outer, std::string_view text)
{
    const std::optional<std::size_t> message = libraryMessageIn(text);
    if (!message)
        return;
    for (const QString &candidate : patternsFor(text, *message)) {
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
    if (m_tried.contains(key))
        return;
    m_tried.insert(key);
    int weight = 0;
    for (const std::string &line : m_sample) {
        LogFields fields;
        const LogLayout::Fit fit = layout.parse(line, &fields);
        if (fit == LogLayout::Fit::Whole)
            weight += weightOf(fields);
        else if (fit == LogLayout::Fit::OuterOnly)
            weight += 1;
    }
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
