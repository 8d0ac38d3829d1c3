#include "PlainName.h"

namespace Vorn {

QByteArray plainName(const QString &name)
{
    const bool isPlain = !name.contains(QChar(0)) && !name.contains(QLatin1Char(':'));
    return isPlain ? name.toUtf8() : QByteArray();
}

std::optional<int> plainNumber(const QString &text, int largest)
{
    bool isNumber = false;
    // Base 0 would take a leading zero for octal.
    const int base = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? 16 : 10;
    const int value = text.toInt(&isNumber, base);
    if (!isNumber || value < 0 || value > largest || text.startsWith(QLatin1Char('+')))
        return std::nullopt;
    return value;
}

} // namespace Vorn
