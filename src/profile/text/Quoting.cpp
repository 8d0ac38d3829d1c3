#include "Quoting.h"

#include <algorithm>
#include <climits>

namespace Vorn {

namespace {

constexpr int maxQuotedSize = 60;

bool isPlain(QChar character)
{
    return character.unicode() >= ' ' && character.unicode() < 0x7f;
}

QString escaped(uint character)
{
    switch (character) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        break;
    }
    const bool isLong = character > 0xffff;
    return QLatin1String(isLong ? "\\U" : "\\u")
        + QString::number(character, 16).rightJustified(isLong ? 8 : 4, QLatin1Char('0'));
}

/// @param limit the most characters to take
/// @param end set to the number of QChars that were taken
QString printableStart(const QString &text, QString::size_type limit, QString::size_type *end)
{
    QString shown;
    shown.reserve(std::min(text.size(), limit));
    QString::size_type i = 0;
    // By code points: half a surrogate pair is not a character.
    for (int count = 0; i < text.size() && count < limit; ++count) {
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const int size = isPair ? 2 : 1;
        const uint character =
            isPair ? QChar::surrogateToUcs4(text.at(i), text.at(i + 1)) : text.at(i).unicode();
        if (isPrintable(character))
            shown.append(text.constData() + i, size);
        else
            shown += escaped(character);
        i += size;
    }
    *end = i;
    return shown;
}

} // namespace

bool isPrintable(uint character)
{
    // Qt counts the separators of lines and paragraphs among the printable ones.
    const QChar::Category category = QChar::category(character);
    return QChar::isPrint(character) && category != QChar::Separator_Line
        && category != QChar::Separator_Paragraph;
}

QString printable(const QString &text)
{
    // Nearly every text is plain, and every line of a session comes through here.
    if (std::all_of(text.begin(), text.end(), isPlain))
        return text;
    QString::size_type end = 0;
    return printableStart(text, text.size(), &end);
}

QString quoted(const QString &text)
{
    QString::size_type end = 0;
    QString shown = printableStart(text, maxQuotedSize, &end);
    if (end < text.size())
        shown += QChar(0x2026);
    return QLatin1Char('\'') + shown + QLatin1Char('\'');
}

QString quoted(std::string_view text)
{
    // Enough for the longest quotation: a line of megabytes need not be decoded as a whole.
    constexpr std::size_t enough = 4 * maxQuotedSize + 4;
    return quoted(QString::fromUtf8(text.data(), static_cast<int>(std::min(text.size(), enough))));
}

QString quotedPath(const QString &path)
{
    if (path.size() >= PATH_MAX)
        return quoted(path);
    return QLatin1Char('\'') + printable(path) + QLatin1Char('\'');
}

} // namespace Vorn
