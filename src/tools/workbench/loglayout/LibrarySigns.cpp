#include "LibrarySigns.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace Vorn::Workbench {

namespace {

constexpr std::array<std::string_view, 4> loggers = {"Input", "BasicInputHandler",
                                                     "LinuxInputListener", "KeyProcessing"};

/// Fronts of messages that nothing else writes.
constexpr std::array<std::string_view, 11> strongSigns = {
    " type: ",
    "Vorn::InputEvent(",
    "Stored:(",
    "Found already event for code:",
    "Double key press detected and new press event received",
    "Received release for non existing press",
    " ---> added '",
    "Event device ",
    "Cannot open input device ",
    "Error reading from event device ",
    "Linux Input Listerner "};

/// Fronts that show something beside the name of the logger only.
constexpr std::array<std::string_view, 13> weakSigns = {"Enter ",
                                                        "key:",
                                                        "bustype: ",
                                                        "name: ",
                                                        "Removing ",
                                                        "Dev ",
                                                        "Short read on event device ",
                                                        "Linux input listener for ",
                                                        "Duplicate key",
                                                        "Trying to remove ",
                                                        "ioctl error: ",
                                                        "Handler ",
                                                        "Device: "};

bool isWordCharacter(char character)
{
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z')
        || (character >= 'A' && character <= 'Z') || character == '_';
}

/// As a word: "UserInput" is somebody else's.
bool namesLogger(std::string_view header)
{
    return std::any_of(loggers.begin(), loggers.end(), [header](std::string_view name) {
        std::size_t at = header.find(name);
        while (at != std::string_view::npos) {
            const std::size_t end = at + name.size();
            if ((at == 0 || !isWordCharacter(header[at - 1]))
                && (end == header.size() || !isWordCharacter(header[end])))
                return true;
            at = header.find(name, end);
        }
        return false;
    });
}

/// A message begins where the line does, or behind what closes the part before it.
bool canBeginAt(std::string_view line, std::size_t at)
{
    return at == 0 || !isWordCharacter(line[at - 1]);
}

template <std::size_t count>
std::size_t firstOf(const std::array<std::string_view, count> &signs, std::string_view line)
{
    std::size_t first = std::string_view::npos;
    for (const std::string_view sign : signs) {
        // What is behind the first one found cannot be before it.
        const std::string_view part =
            line.substr(0, first == std::string_view::npos ? first : first + sign.size());
        const std::size_t at = part.find(sign);
        if (at != std::string_view::npos && at < first && canBeginAt(line, at))
            first = at;
    }
    return first;
}

bool isConvincing(std::string_view line, std::size_t at)
{
    constexpr std::string_view record = " type: ";
    return line.substr(at, record.size()) != record
        || line.find(" code:", at) != std::string_view::npos;
}

} // namespace

bool isLibraryLogger(std::string_view name)
{
    return std::find(loggers.begin(), loggers.end(), name) != loggers.end();
}

std::string_view completedLogger(std::string_view end)
{
    std::string_view found;
    for (const std::string_view name : loggers) {
        if (name.size() < end.size() || name.substr(name.size() - end.size()) != end)
            continue;
        if (!found.empty())
            return end;
        found = name;
    }
    return found.empty() ? end : found;
}

bool beginsLikeLibraryMessage(std::string_view message)
{
    const auto isFront = [message](std::string_view sign) {
        return message.substr(0, sign.size()) == sign;
    };
    return std::any_of(strongSigns.begin(), strongSigns.end(), isFront)
        || std::any_of(weakSigns.begin(), weakSigns.end(), isFront);
}

std::optional<std::size_t> libraryMessageIn(std::string_view line)
{
    const std::size_t strong = firstOf(strongSigns, line);
    const bool isStrong = strong != std::string_view::npos && isConvincing(line, strong);
    const std::size_t weak = firstOf(weakSigns, line);
    // "Enter LinuxInputListener::readData" names a logger in the message only.
    const bool isWeak = weak != std::string_view::npos && namesLogger(line.substr(0, weak));
    if (!isStrong && !isWeak)
        return std::nullopt;
    return isStrong && isWeak ? std::min(strong, weak) : isStrong ? strong : weak;
}

QString libraryLoggers()
{
    QStringList names;
    for (const std::string_view name : loggers)
        names += QLatin1Char('\'') + QString::fromLatin1(name.data(), static_cast<int>(name.size()))
            + QLatin1Char('\'');
    return names.join(QStringLiteral(", "));
}

} // namespace Vorn::Workbench
