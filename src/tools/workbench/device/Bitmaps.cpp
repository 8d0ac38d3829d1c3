#include "Bitmaps.h"

namespace Vorn::Workbench {

bool testBit(const QByteArray &bits, int bit)
{
    return bit >= 0 && bit / 8 < bits.size() && ((bits.at(bit / 8) >> (bit % 8)) & 1) != 0;
}

void setBit(QByteArray *bits, int bit)
{
    if (bit / 8 >= bits->size())
        *bits = padded(*bits, bit / 8 + 1);
    (*bits)[bit / 8] = static_cast<char>(bits->at(bit / 8) | (1 << (bit % 8)));
}

QVector<int> setBits(const QByteArray &bits)
{
    QVector<int> set;
    for (int bit = 0; bit < bits.size() * 8; ++bit) {
        if (testBit(bits, bit))
            set += bit;
    }
    return set;
}

QByteArray withoutTrailingZeros(QByteArray bits)
{
    auto size = bits.size();
    while (size > 0 && bits.at(size - 1) == '\0')
        --size;
    bits.truncate(size);
    return bits;
}

QByteArray padded(const QByteArray &bits, int size)
{
    return bits.leftJustified(size, '\0', true);
}

int codeCount(int type)
{
    switch (type) {
    case EV_KEY:
        return KEY_CNT;
    case EV_REL:
        return REL_CNT;
    case EV_ABS:
        return ABS_CNT;
    case EV_MSC:
        return MSC_CNT;
    case EV_SW:
        return SW_CNT;
    case EV_LED:
        return LED_CNT;
    case EV_SND:
        return SND_CNT;
    case EV_REP:
        return REP_CNT;
    case EV_FF:
        return FF_CNT;
    // EV_SYN, EV_PWR and EV_FF_STATUS, and numbers that are not in use.
    default:
        return 0;
    }
}

int bitmapSize(int type)
{
    // The kernel stores bitmaps in whole words and hands them out as they are.
    return (codeCount(type) + 63) / 64 * 8;
}

} // namespace Vorn::Workbench
