#include "RecordedDevice.h"

#include "Bitmaps.h"

namespace Vorn::Workbench {

namespace {

// -1 if none is set.
int highestBit(const QByteArray &bits)
{
    int bit = static_cast<int>(bits.size()) * 8 - 1;
    while (bit >= 0 && !testBit(bits, bit))
        --bit;
    return bit;
}

} // namespace

QByteArray typeBits(const RecordedDevice &device)
{
    QByteArray bits;
    setBit(&bits, EV_SYN);
    for (auto it = device.codes.keyBegin(); it != device.codes.keyEnd(); ++it)
        setBit(&bits, *it);
    return bits;
}

QString declareCodes(RecordedDevice *device, int type, const QByteArray &bits)
{
    const QByteArray codes = withoutTrailingZeros(bits);
    if (codeCount(type) > 0 && highestBit(codes) >= codeCount(type))
        return QStringLiteral("codes above %1, the last one of event type %2")
            .arg(codeCount(type) - 1)
            .arg(type);
    // Some types have no codes of their own; a bitmap for one of them means nothing.
    device->codes.insert(type, codeCount(type) > 0 ? codes : QByteArray());
    return {};
}

bool RecordedDevice::has(int type, int code) const
{
    return testBit(codes.value(type), code);
}

QVector<int> RecordedDevice::codesOf(int type) const
{
    return setBits(codes.value(type));
}

void RecordedDevice::declare(int type, int code)
{
    if (type <= EV_SYN || type >= typeCount || code < 0)
        return;
    // A code that is out of range still declares its type.
    QByteArray &bits = codes[type];
    if (code < codeCount(type))
        setBit(&bits, code);
}

QByteArray kernelText(const QByteArray &bytes)
{
    const auto end = bytes.indexOf('\0');
    return end < 0 ? bytes : bytes.left(end);
}

} // namespace Vorn::Workbench
