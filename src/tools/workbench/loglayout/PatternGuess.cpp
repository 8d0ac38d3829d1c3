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
    bool isLoggerPadded = false; ///< a logger's name that was cut

    static std::vector<Choice> all();
};

constexpr std::array<const char *, 3> levelConversions = {"%-5p", "%p", "%5p"};

std::vector<Choice> Choice::all()
{
    std::vector<Choice> choices;
    constexpr int count = 24;
    for (int i = 0; i < count; ++i)
        choices.push_back({i % 3, (i / 3) % 2 == 0, (i / 6) % 2 == 1, i / 12 == 1});
    return choices;
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
Conversion loggerConversion(std::string_view header, const HeaderWord &word)
{
    const std::size_t end = word.begin + word.size;
    const std::size_t behind = blanksAt(header, end);
    const std::size_t before = blanksBefore(header, word.begin);
    const std::size_t next = end + behind;
    const bool isClosed =
        next < header.size() && std::string_view(":])>,;").find(header[next]) != std::string::npos;
    // Unless something closes the field at once, one of the blanks separates it from the next.
    const std::size_t filling = isClosed || behind == 0 ? behind : behind - 1;
    if (filling > 0)
        return {QStringLiteral("%-%1c").arg(word.size + filling), 0, filling};
    if (before > 1 && word.begin > before)
        return {QStringLiteral("%%1c").arg(word.size + before - 1), before - 1, 0};
    return {QStringLiteral("%c")};
}

Conversion levelConversion(std::string_view header, const HeaderWord &word, const Choice &choice)
{
    constexpr std::size_t width = 5;
    const QString text =
        QString::fromLatin1(levelConversions.at(static_cast<std::size_t>(choice.level)));
    const std::size_t filling = width - std::min(width, word.size);
    if (text == QStringLiteral("%-5p"))
        return {text, 0, std::min(filling, blanksAt(header, word.begin + word.size))};
    if (text == QStringLiteral("%5p"))
        return {text, std::min(filling, blanksBefore(header, word.begin)), 0};
    return {text};
}

Conversion conversion(std::string_view header, const HeaderWord &word, const Choice &choice)
{
    switch (word.kind) {
    case HeaderWord::Kind::Time:
        return {QStringLiteral("%D{") + (choice.isDayFirst ? word.dayFirst : word.format)
                + QLatin1Char('}')};
    case HeaderWord::Kind::Level:
        return levelConversion(header, word, choice);
    case HeaderWord::Kind::Logger:
        return loggerConversion(header, word);
    case HeaderWord::Kind::CutLogger:
        return {
            QString(choice.isLoggerPadded ? QStringLiteral("%-%1.%1c") : QStringLiteral("%.%1c"))
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
        const Conversion part = conversion(header, word, choice);
        const std::size_t end = word.begin - std::min(part.blanksBefore, word.begin - at);
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

} // namespace

QStringList patternsFor(std::string_view line, std::size_t message)
{
    const std::string_view header = line.substr(0, message);
    const std::vector<HeaderWord> words = headerWords(header);
    QStringList patterns;
    for (const Choice &choice : Choice::all())
        patterns += patternFor(header, choice.wordsVary ? joined(words) : words, choice);
    patterns.removeDuplicates();
    return patterns;
}

} // namespace Vorn::Workbench
