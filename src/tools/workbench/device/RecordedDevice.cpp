#include "RecordedDevice.h"

#include "Bitmaps.h"

namespace Vorn::Workbench {

namespace {

// -1 if none is set.
int highestBit(const QByteArray &bits)
{
    int bit = bits.size() * 8 - 1;
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
        return QStringLiteral("codes beyond %1, which is the last one of event type %2")
            .arg(codeCount(type) - 1)
            .arg(type);
    // Types without codes of their own may come with any: they say nothing.
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
    QByteArray &bits = codes[type];
    if (code < codeCount(type))
        setBit(&bits, code);
}

QByteArray kernelText(const QByteArray &bytes)
{
    const int end = bytes.indexOf('\0');
    return end < 0 ? bytes : bytes.left(end);
}

} // namespace Vorn::Workbench
