#ifndef VORN_WORKBENCH_LINEREADER_H
#define VORN_WORKBENCH_LINEREADER_H

#include <QByteArray>

#include <charconv>
#include <optional>
#include <string_view>

namespace Vorn::Workbench {

/// Goes through the lines of a text, which must outlive the reader.
class LineReader
{
public:
    explicit LineReader(const QByteArray &text)
        : m_rest(text.constData(), static_cast<std::size_t>(text.size()))
    { }

    /// Goes to the next line; false at the end.
    bool next();

    std::string_view line() const { return m_line; } ///< without the line feed
    int number() const { return m_number; } ///< from 1

private:
    std::string_view m_rest;
    std::string_view m_line;
    int m_number = 0;
};

/// Removes the first field from a line whose fields are separated by blanks, and returns it; empty
/// at the end.
std::string_view takeField(std::string_view *rest);

/// The number that @p text is; nothing if any of it is not part of a number.
template <typename Number>
std::optional<Number> toNumber(std::string_view text, int base = 10)
{
    Number number = 0;
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, base);
    if (text.empty() || result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return number;
}

/// The bytes of a text of hexadecimal digits, two for each; nothing if it is not one.
std::optional<QByteArray> toBytes(std::string_view hex);

QByteArray toByteArray(std::string_view text);

} // namespace Vorn::Workbench

#endif
