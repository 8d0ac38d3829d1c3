#include "PatternGuess.h"

#include "HeaderWords.h"

#include <algorithm>
#include <array>
#include <vector>

namespace Vorn::Workbench {

namespace {

/// What a single line leaves open.
struct Choice
{
    int level = 0; ///< index into levelConversions
    bool wordsVary = true; ///< between lines: words that are nothing else
    bool isDayFirst = false;
    bool isLoggerUnlikely = false; ///< which of two ways a logger may be filled up
};

constexpr std::array<const char *, 3> levelConversions = {"%-5p", "%p", "%5p"};

/// Whether a character stands right behind a value, blanks that fill it up included.
bool closes(char character)
{
    return std::string_view(":])>|,;").find(character) != std::string_view::npos;
}

bool opens(char character)
{
    return std::string_view("[(<|").find(character) != std::string_view::npos;
}

QString literal(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()))
        .replace(QLatin1Char('%'), QStringLiteral("%%"));
}

std::size_t blanksAt(std::string_view header, std::size_t at)
{
    return std::min(header.find_first_not_of(' ', at), header.size()) - at;
}

std::size_t blanksBefore(std::string_view header, std::size_t at)
{
    const std::size_t last = header.substr(0, at).find_last_not_of(' ');
    return last == std::string_view::npos ? at : at - last - 1;
}

/// A conversion, and the blanks around its value that belong to the value's width.
struct Conversion
{
    QString text;
    std::size_t blanksBefore = 0;
    std::size_t blanksBehind = 0;
};

/// "%-18c", if what is around the name shows that the layout fills it up.
/// @param at where the part before ends, with the blanks that belong to it
Conversion loggerConversion(std::string_view header, std::size_t at, const HeaderWord &word,
                            const Choice &choice)
{
    const std::size_t end = word.begin + word.size;
    const std::size_t behind = blanksAt(header, end);
    const std::size_t before = std::min(blanksBefore(header, word.begin), word.begin - at);
    const std::size_t next = end + behind;
    const bool isClosed = next < header.size() && closes(header[next]);
    // Unless something closes the field at once, one of the blanks separates it from the next.
    const std::size_t filling = isClosed || behind == 0 ? behind : behind - 1;
    // "Input : " may just be written so.
    const bool isLikely = filling > 1 || !isClosed;
    if (filling > 0 && isLikely != choice.isLoggerUnlikely)
        return {QStringLiteral("%-%1c").arg(word.size + filling), 0, filling};
    if (before > 1 && word.begin > before)
        return {QStringLiteral("%%1c").arg(word.size + before - 1), before - 1, 0};
    return {QStringLiteral("%c")};
}

Conversion levelConversion(std::string_view header, std::size_t at, const HeaderWord &word,
                           const Choice &choice)
{
    constexpr std::size_t width = 5;
    const QString text =
        QString::fromLatin1(levelConversions.at(static_cast<std::size_t>(choice.level)));
    const std::size_t filling = width - std::min(width, word.size);
    const std::size_t end = word.begin + word.size;
    const std::size_t behind = blanksAt(header, end);
    const std::size_t before = std::min(blanksBefore(header, word.begin), word.begin - at);
    // One blank separates the level from the word beside it.
    const std::size_t next = end + behind;
    const bool isClosed = next < header.size() && closes(header[next]);
    if (text == QStringLiteral("%-5p"))
        return {text, 0, std::min(filling, behind - (isClosed || behind == 0 ? 0 : 1))};
    const bool isOpen = before == word.begin || opens(header[word.begin - before - 1]);
    if (text == QStringLiteral("%5p"))
        return {text, std::min(filling, before - (isOpen || before == 0 ? 0 : 1)), 0};
    return {text};
}

Conversion conversion(std::string_view header, std::size_t at, const HeaderWord &word,
                      const Choice &choice)
{
    switch (word.kind) {
    case HeaderWord::Kind::Time:
        return {QStringLiteral("%D{") + (choice.isDayFirst ? word.dayFirst : word.format)
                + QLatin1Char('}')};
    case HeaderWord::Kind::Level:
        return levelConversion(header, at, word, choice);
    case HeaderWord::Kind::Logger:
        return loggerConversion(header, at, word, choice);
    case HeaderWord::Kind::CutLogger:
        return {
            QString(choice.isLoggerUnlikely ? QStringLiteral("%-%1.%1c") : QStringLiteral("%.%1c"))
                .arg(word.size)};
    case HeaderWord::Kind::Other:
        return {choice.wordsVary ? QStringLiteral("%x")
                                 : literal(header.substr(word.begin, word.size))};
    case HeaderWord::Kind::Known:
        break;
    }
    return {word.format};
}

QString patternFor(std::string_view header, const std::vector<HeaderWord> &words,
                   const Choice &choice)
{
    QString pattern;
    std::size_t at = 0;
    for (const HeaderWord &word : words) {
        const Conversion part = conversion(header, at, word, choice);
        const std::size_t end = word.begin - part.blanksBefore;
        pattern += literal(header.substr(at, end - at)) + part.text;
        at = word.begin + word.size + part.blanksBehind;
    }
    return pattern + literal(header.substr(at)) + QStringLiteral("%m%n");
}

/// Function names and the like have several words, which vary as one.
std::vector<HeaderWord> joined(const std::vector<HeaderWord> &words)
{
    std::vector<HeaderWord> result;
    for (const HeaderWord &word : words) {
        const bool isNext = !result.empty() && word.kind == HeaderWord::Kind::Other
            && result.back().kind == HeaderWord::Kind::Other;
        if (isNext)
            result.back().size = word.begin + word.size - result.back().begin;
        else
            result.push_back(word);
    }
    return result;
}

/// Levels of four letters show how a layout fills them up; for the others the usual way is first.
std::array<int, 3> likelyLevels(std::string_view header, const std::vector<HeaderWord> &words)
{
    for (const HeaderWord &word : words) {
        constexpr std::size_t shortLevel = 4;
        if (word.kind != HeaderWord::Kind::Level || word.size != shortLevel)
            continue;
        if (levelConversion(header, 0, word, {0}).blanksBehind > 0)
            break;
        return levelConversion(header, 0, word, {2}).blanksBefore > 0 ? std::array<int, 3>{2, 1, 0}
                                                                      : std::array<int, 3>{1, 0, 2};
    }
    return {0, 1, 2};
}

std::vector<Choice> choices(const std::array<int, 3> &levels)
{
    std::vector<Choice> result;
    for (const bool isLoggerUnlikely : {false, true}) {
        for (const bool isDayFirst : {false, true}) {
            for (const bool wordsVary : {true, false}) {
                for (const int level : levels)
                    result.push_back({level, wordsVary, isDayFirst, isLoggerUnlikely});
            }
        }
    }
    return result;
}

} // namespace

QStringList patternsFor(std::string_view line, std::size_t message)
{
    const std::string_view header = line.substr(0, message);
    const std::vector<HeaderWord> words = headerWords(header);
    QStringList patterns;
    for (const Choice &choice : choices(likelyLevels(header, words)))
        patterns += patternFor(header, choice.wordsVary ? joined(words) : words, choice);
    patterns.removeDuplicates();
    return patterns;
}

} // namespace Vorn::Workbench
