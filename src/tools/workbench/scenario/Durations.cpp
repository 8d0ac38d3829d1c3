#include "Durations.h"

#include <QRegularExpression>

namespace Vorn::Workbench {

namespace {

// Longer than any text that the pattern matches. A word of a scenario may be a megabyte long.
constexpr int longestText = 60;

} // namespace

std::optional<qint64> milliseconds(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\A([0-9]{1,12})(?:\\.([0-9]{1,6}))?(ms|s|min|h)\\z"));
    const QRegularExpressionMatch match = pattern.match(text.left(longestText));
    if (!match.hasMatch())
        return std::nullopt;
    const QString unit = match.captured(3);
    qint64 factor = 1;
    if (unit == QLatin1String("s"))
        factor = 1000;
    else if (unit == QLatin1String("min"))
        factor = 60LL * 1000;
    else if (unit == QLatin1String("h"))
        factor = 60LL * 60 * 1000;
    // In integers: 0.001s must be 1 ms exactly, and 0.0001s an error.
    const QString digits = match.captured(2);
    qint64 fraction = digits.toLongLong() * factor;
    for (int i = 0; i < digits.size(); ++i) {
        if (fraction % 10 != 0)
            return std::nullopt;
        fraction /= 10;
    }
    return match.captured(1).toLongLong() * factor + fraction;
}

std::optional<qint64> signedMilliseconds(const QString &text)
{
    const bool isNegative = text.startsWith(QLatin1Char('-'));
    const bool hasSign = isNegative || text.startsWith(QLatin1Char('+'));
    const std::optional<qint64> duration = milliseconds(hasSign ? text.mid(1) : text);
    if (!duration)
        return std::nullopt;
    return isNegative ? -*duration : *duration;
}

QString durationText(qint64 milliseconds)
{
    // From ten seconds on, "12.345 s" reads better than "12345 ms".
    if (milliseconds % 1000 != 0 && qAbs(milliseconds) < 10'000)
        return QStringLiteral("%1 ms").arg(milliseconds);
    return QStringLiteral("%1 s").arg(QString::number(static_cast<double>(milliseconds) / 1000));
}

} // namespace Vorn::Workbench
