#include "Quoting.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

constexpr int maxQuotedSize = 60;

} // namespace

QString quoted(const QString &text)
{
    QString shown;
    int count = 0;
    // By code points: half a surrogate pair would not be a character.
    for (int i = 0; i < text.size() && count < maxQuotedSize; ++count) {
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const int size = isPair ? 2 : 1;
        const uint character =
            isPair ? QChar::surrogateToUcs4(text.at(i), text.at(i + 1)) : text.at(i).unicode();
        shown += QChar::isPrint(character) ? text.mid(i, size)
                                           : QString(QChar(QChar::ReplacementCharacter));
        i += size;
        if (count + 1 == maxQuotedSize && i < text.size())
            shown += QChar(0x2026);
    }
    return QLatin1Char('\'') + shown + QLatin1Char('\'');
}

QString quoted(std::string_view text)
{
    // Enough for the longest quotation: a line of megabytes need not be decoded as a whole.
    constexpr std::size_t enough = 4 * maxQuotedSize + 4;
    return quoted(QString::fromUtf8(text.data(), static_cast<int>(std::min(text.size(), enough))));
}

} // namespace Vorn::Workbench
