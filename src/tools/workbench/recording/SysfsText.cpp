#include "SysfsText.h"

#include "Bitmaps.h"
#include "LineReader.h"

#include <linux/input.h>

namespace Vorn::Workbench {

const QMap<QByteArray, int> &typesByName()
{
    static const QMap<QByteArray, int> types{{"ev", EV_SYN},  {"key", EV_KEY}, {"rel", EV_REL},
                                             {"abs", EV_ABS}, {"msc", EV_MSC}, {"led", EV_LED},
                                             {"snd", EV_SND}, {"ff", EV_FF},   {"sw", EV_SW}};
    return types;
}

std::optional<QByteArray> bitsOfWords(const QByteArray &words, int wordSize)
{
    // Words and their bytes both come highest first, so all bytes are turned round once at the end.
    QByteArray highestFirst;
    std::string_view rest(words.constData(), static_cast<std::size_t>(words.size()));
    for (std::string_view field = takeField(&rest); !field.empty(); field = takeField(&rest)) {
        const auto word = toNumber<quint64>(field, 16);
        // KEY_CNT is the largest bitmap. Without a limit a line could ask for any amount of memory.
        if (!word || field.size() > static_cast<std::size_t>(wordSize) * 2
            || highestFirst.size() >= KEY_CNT / 8)
            return std::nullopt;
        for (int byte = wordSize - 1; byte >= 0; --byte)
            highestFirst += static_cast<char>(*word >> (8 * byte));
    }
    QByteArray bits;
    bits.reserve(highestFirst.size());
    for (auto i = highestFirst.size() - 1; i >= 0; --i)
        bits += highestFirst.at(i);
    return withoutTrailingZeros(bits);
}

QByteArray wordsOfBits(const QByteArray &bits)
{
    constexpr int wordSize = 8;
    QByteArray words;
    const int count = qMax(1, (static_cast<int>(bits.size()) + wordSize - 1) / wordSize);
    const QByteArray whole = padded(bits, count * wordSize);
    for (auto i = whole.size() - 1; i >= 0; --i) {
        words += whole.mid(i, 1).toHex();
        if (i > 0 && i % wordSize == 0)
            words += ' ';
    }
    return words;
}

int lastKeyOfAlias(const QByteArray &alias)
{
    // The codes of each type follow its letter, keys between 'k' and 'r'; the first one is
    // attached.
    const auto start = alias.indexOf(",k", alias.indexOf("-e"));
    const auto end = alias.indexOf(",r", start);
    if (start < 0 || end < 0)
        return -1;
    const auto last = alias.lastIndexOf(',', end - 1) + 1;
    bool isNumber = false;
    const int code = alias.mid(last, end - last).replace("k", "").toInt(&isNumber, 16);
    return isNumber ? code : -1;
}

} // namespace Vorn::Workbench
