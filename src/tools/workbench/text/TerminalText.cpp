#include "TerminalText.h"

#include <QVector>

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <string>

namespace Vorn::Workbench {

namespace {

using Characters = QVector<uint>;

bool isAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character.unicode() < 0x80; });
}

/// The width of each code point.
QVector<int> widths(const Characters &characters)
{
    // The C library knows them only in a locale with UTF-8. The program's own may be another, and
    // its output is in UTF-8 nevertheless.
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t previous = utf8 ? uselocale(utf8) : nullptr;
    QVector<int> result;
    result.reserve(characters.size());
    for (const uint character : characters) {
        const int width = wcwidth(static_cast<wchar_t>(character));
        result.append(width < 0 ? 1 : width);
    }
    if (previous)
        uselocale(previous);
    return result;
}

/// How many characters from @p begin on fit into @p width, at least one.
Characters::size_type fitting(const QVector<int> &columns, Characters::size_type begin, int width)
{
    auto end = begin;
    for (int used = 0; end < columns.size() && used + columns[end] <= width; ++end)
        used += columns[end];
    return std::max<Characters::size_type>(end - begin, 1);
}

QString toText(const Characters &characters, Characters::size_type from,
               Characters::size_type count)
{
    const Characters::const_iterator begin = characters.begin() + from;
    return QString::fromStdU32String(std::u32string(begin, begin + count));
}

} // namespace

int textWidth(const QString &text)
{
    if (isAscii(text))
        return static_cast<int>(text.size());
    int sum = 0;
    const QVector<int> columns = widths(text.toUcs4());
    for (const int width : columns)
        sum += width;
    return sum;
}

QString padded(const QString &text, int width)
{
    return text + QString(std::max(0, width - textWidth(text)), QLatin1Char(' '));
}

QString elided(const QString &text, int width)
{
    if (textWidth(text) <= width)
        return text;
    const Characters characters = text.toUcs4();
    const QVector<int> columns = widths(characters);
    // The beginning gets the odd column. Names of devices that belong together differ at the end.
    int room = width / 2;
    int begin = 0;
    for (; begin < columns.size() && columns[begin] <= room; ++begin)
        room -= columns[begin];
    room = (width - 1) / 2;
    auto end = columns.size();
    for (; end > begin && columns[end - 1] <= room; --end)
        room -= columns[end - 1];
    return toText(characters, 0, begin) + QChar(0x2026)
        + toText(characters, end, characters.size() - end);
}

QStringList wrapped(const QString &text, int width)
{
    const Characters characters = text.toUcs4();
    const QVector<int> columns = widths(characters);
    QStringList lines;
    Characters::size_type begin = 0;
    do {
        auto end = std::min(begin + fitting(columns, begin, width), characters.size());
        if (end < characters.size()) {
            auto blank = end;
            while (blank > begin && characters[blank] != ' ')
                --blank;
            end = blank > begin ? blank : end;
        }
        auto last = end;
        while (last > begin && characters[last - 1] == ' ')
            --last;
        lines += toText(characters, begin, last - begin);
        begin = end;
        while (begin < characters.size() && characters[begin] == ' ')
            ++begin;
    } while (begin < characters.size());
    return lines;
}

} // namespace Vorn::Workbench
