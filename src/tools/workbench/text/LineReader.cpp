#include "LineReader.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

// -1 for any other character.
int digitOf(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return -1;
}

} // namespace

bool LineReader::next()
{
    if (m_rest.empty())
        return false;
    const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
    m_line = m_rest.substr(0, end);
    m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
    ++m_number;
    return true;
}

std::string_view takeField(std::string_view *rest)
{
    // With the carriage return, so that files with DOS line ends are read, too.
    constexpr char blanks[] = " \t\r";
    rest->remove_prefix(std::min(rest->find_first_not_of(blanks), rest->size()));
    const std::size_t end = std::min(rest->find_first_of(blanks), rest->size());
    const std::string_view field = rest->substr(0, end);
    rest->remove_prefix(end);
    return field;
}

std::optional<QByteArray> toBytes(std::string_view hex)
{
    if (hex.size() % 2 != 0)
        return std::nullopt;
    QByteArray bytes;
    bytes.reserve(static_cast<int>(hex.size() / 2));
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const int high = digitOf(hex[i]);
        const int low = digitOf(hex[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

QByteArray toByteArray(std::string_view text)
{
    return {text.data(), static_cast<int>(text.size())};
}

} // namespace Vorn::Workbench
