#ifndef VORN_WORKBENCH_LINEREADER_H
#define VORN_WORKBENCH_LINEREADER_H

#include <QByteArray>

#include <charconv>
#include <optional>
#include <string_view>

namespace Vorn::Workbench {

/// The lines of a text, one after the other. The text must stay.
class LineReader
{
public:
    explicit LineReader(const QByteArray &text)
        : m_rest(text.constData(), static_cast<std::size_t>(text.size()))
    { }

    /// Goes to the next line; false at the end.
    bool next();

    std::string_view line() const { return m_line; } ///< without its end
    int number() const { return m_number; } ///< from 1

private:
    std::string_view m_rest;
    std::string_view m_line;
    int m_number = 0;
};

/// Takes the next field off a line whose fields are separated by blanks; empty at the end.
std::string_view takeField(std::string_view *rest);

/// The whole of @p text as a number, or nothing.
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

/// Bytes that are written as hexadecimal digits; nothing if they are not.
std::optional<QByteArray> toBytes(std::string_view hex);

QByteArray toByteArray(std::string_view text);

} // namespace Vorn::Workbench

#endif
