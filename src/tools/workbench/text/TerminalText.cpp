#include "TerminalText.h"

#include <QVector>

#include <algorithm>
#include <clocale>
#include <cwchar>

namespace Vorn::Workbench {

namespace {

bool isAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character.unicode() < 0x80; });
}

/// The width of each code point.
QVector<int> widths(const QVector<uint> &characters)
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
int fitting(const QVector<int> &columns, int begin, int width)
{
    int end = begin;
    for (int used = 0; end < columns.size() && used + columns[end] <= width; ++end)
        used += columns[end];
    return std::max(end - begin, 1);
}

QString toText(const QVector<uint> &characters, int from, int count)
{
    return QString::fromUcs4(characters.constData() + from, count);
}

} // namespace

int textWidth(const QString &text)
{
    if (isAscii(text))
        return text.size();
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
    const QVector<uint> characters = text.toUcs4();
    const QVector<int> columns = widths(characters);
    // The beginning gets the odd column. Names of devices that belong together differ at the end.
    int room = width / 2;
    int begin = 0;
    for (; begin < columns.size() && columns[begin] <= room; ++begin)
        room -= columns[begin];
    room = (width - 1) / 2;
    int end = characters.size();
    for (; end > begin && columns[end - 1] <= room; --end)
        room -= columns[end - 1];
    return toText(characters, 0, begin) + QChar(0x2026)
        + toText(characters, end, characters.size() - end);
}

QStringList wrapped(const QString &text, int width)
{
    const QVector<uint> characters = text.toUcs4();
    const QVector<int> columns = widths(characters);
    QStringList lines;
    int begin = 0;
    do {
        int end = qMin(begin + fitting(columns, begin, width), characters.size());
        if (end < characters.size()) {
            int blank = end;
            while (blank > begin && characters[blank] != ' ')
                --blank;
            end = blank > begin ? blank : end;
        }
        int last = end;
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
