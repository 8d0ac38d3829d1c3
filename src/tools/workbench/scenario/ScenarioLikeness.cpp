#include "ScenarioLikeness.h"

#include "LineReader.h"
#include "Suggestion.h"

namespace Vorn::Workbench {

namespace {

// Enough to tell, and compared with all keywords in an instant.
constexpr int examinedLines = 200;

QString wordOf(std::string_view *rest)
{
    const std::string_view word = takeField(rest);
    // No step begins with a longer word.
    constexpr std::size_t longest = 64;
    return word.size() > longest ? QString()
                                 : QString::fromUtf8(word.data(), static_cast<int>(word.size()));
}

} // namespace

bool looksLikeScenario(const QByteArray &text, const QStringList &steps, const QStringList &actions)
{
    if (text.contains('\0'))
        return false;
    QStringList known = steps;
    int lines = 0;
    int likely = 0;
    LineReader reader(text);
    while (lines < examinedLines && reader.next()) {
        std::string_view rest = reader.line();
        if (reader.number() == 1 && rest.substr(0, 3) == "\xef\xbb\xbf")
            rest.remove_prefix(3);
        const std::string_view content = rest.substr(0, rest.find('#'));
        std::string_view words = content;
        if (takeField(&words).empty())
            continue;
        words = content;
        const QString first = wordOf(&words);
        const QString second = wordOf(&words);
        ++lines;
        if (known.contains(first) || actions.contains(second) || !closest(first, known).isEmpty())
            ++likely;
        if (first == QLatin1String("device"))
            known += second;
    }
    return 2 * likely >= lines;
}

} // namespace Vorn::Workbench
