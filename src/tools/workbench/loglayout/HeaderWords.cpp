#include "HeaderWords.h"

#include "LibrarySigns.h"
#include "LogLevel.h"
#include "TimeInText.h"

#include <algorithm>
#include <array>

namespace Vorn::Workbench {

namespace {

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isWordCharacter(char character)
{
    return isDigit(character) || (character >= 'a' && character <= 'z')
        || (character >= 'A' && character <= 'Z') || character == '_'
        || static_cast<unsigned char>(character) >= 0x80;
}

bool isPathCharacter(char character)
{
    return isWordCharacter(character) || character == '.' || character == '/' || character == '-'
        || character == '+';
}

template <typename Predicate>
std::size_t sizeOf(std::string_view text, Predicate belongs)
{
    const auto end = std::find_if_not(text.begin(), text.end(), belongs);
    return static_cast<std::size_t>(end - text.begin());
}

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() > end.size() && text.substr(text.size() - end.size()) == end;
}

bool isSourceFile(std::string_view path)
{
    constexpr std::array<std::string_view, 6> ends = {".cpp", ".h", ".cc", ".cxx", ".hpp", ".c"};
    return std::any_of(ends.begin(), ends.end(),
                       [path](std::string_view end) { return endsWith(path, end); });
}

/// "Input.cpp:12", "Input.cpp(12)", "Input.cpp"
bool takeLocation(std::string_view rest, HeaderWord *word)
{
    const std::string_view path = rest.substr(0, sizeOf(rest, isPathCharacter));
    if (!isSourceFile(path))
        return false;
    rest.remove_prefix(path.size());
    const std::size_t digits = rest.empty() ? 0 : sizeOf(rest.substr(1), isDigit);
    word->kind = HeaderWord::Kind::Known;
    word->format = QStringLiteral("%F");
    word->size = path.size();
    if (digits > 0 && rest.front() == ':') {
        word->format = QStringLiteral("%l");
        word->size += 1 + digits;
    } else if (digits > 0 && rest.front() == '(' && rest.substr(1 + digits, 1) == ")") {
        word->format = QStringLiteral("%F(%L)");
        word->size += 2 + digits;
    }
    return true;
}

/// "<context>", where the brackets are part of the literal text.
bool takeContext(std::string_view header, std::size_t at, HeaderWord *word)
{
    if (at == 0 || header[at - 1] != '<')
        return false;
    const std::size_t end = header.find('>', at);
    if (end == std::string_view::npos)
        return false;
    word->kind = HeaderWord::Kind::Known;
    word->format = QStringLiteral("%x");
    word->size = end - at;
    return true;
}

/// A number at the front counts milliseconds; a large one is a thread as the C library numbers
/// them; others are processes.
void classifyNumber(std::string_view number, HeaderWord *word)
{
    constexpr std::size_t maxPidDigits = 7;
    word->kind = HeaderWord::Kind::Known;
    word->format = word->begin == 0    ? QStringLiteral("%r")
        : number.size() > maxPidDigits ? QStringLiteral("%t")
                                       : QStringLiteral("%i");
}

bool isCutLogger(std::string_view name)
{
    constexpr std::size_t minSize = 3;
    return name.size() >= minSize && !isLibraryLogger(name)
        && isLibraryLogger(completedLogger(name));
}

void classifyName(std::string_view header, std::string_view name, HeaderWord *word)
{
    const std::size_t end = word->begin + word->size;
    const bool isScope = header.substr(end, 2) == "::";
    const bool isBracketed =
        word->begin > 0 && header[word->begin - 1] == '[' && header.substr(end, 1) == "]";
    if (levelOf(name)) {
        word->kind = HeaderWord::Kind::Level;
    } else if (isLibraryLogger(name) && !isScope) {
        word->kind = HeaderWord::Kind::Logger;
    } else if (isCutLogger(name) && !isScope) {
        word->kind = HeaderWord::Kind::CutLogger;
    } else if (isBracketed) {
        word->kind = HeaderWord::Kind::Known;
        word->format = QStringLiteral("%t");
    }
}

/// The word that begins at a place, where there is one.
HeaderWord wordAt(std::string_view header, std::size_t at)
{
    HeaderWord word;
    word.begin = at;
    const std::string_view rest = header.substr(at);
    if (takeContext(header, at, &word) || takeLocation(rest, &word))
        return word;
    if (const std::optional<TimeInText> time = timeAtFrontOf(rest)) {
        word.kind = HeaderWord::Kind::Time;
        word.size = time->size;
        word.format = time->format;
        word.dayFirst = time->dayFirst;
        return word;
    }
    const std::string_view name = rest.substr(0, sizeOf(rest, isWordCharacter));
    word.size = name.size();
    if (name.empty())
        return word;
    if (sizeOf(name, isDigit) == name.size())
        classifyNumber(name, &word);
    else
        classifyName(header, name, &word);
    return word;
}

} // namespace

std::vector<HeaderWord> headerWords(std::string_view header)
{
    std::vector<HeaderWord> words;
    std::size_t at = 0;
    while (at < header.size()) {
        const bool isContext = at > 0 && header[at - 1] == '<';
        if (!isWordCharacter(header[at]) && !isContext) {
            ++at;
            continue;
        }
        HeaderWord word = wordAt(header, at);
        if (word.size == 0 && word.kind == HeaderWord::Kind::Other) {
            ++at;
            continue;
        }
        // Behind the process there may be its thread.
        const auto isProcess = [](const HeaderWord &other) {
            return other.format == QStringLiteral("%i");
        };
        if (isProcess(word) && std::any_of(words.begin(), words.end(), isProcess))
            word.format = QStringLiteral("%t");
        words.push_back(word);
        at += std::max<std::size_t>(word.size, 1);
    }
    return words;
}

} // namespace Vorn::Workbench
