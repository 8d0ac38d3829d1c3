#include "SessionTime.h"

namespace Vorn::Workbench {

// Truncated rather than rounded: something 0.4 ms before 1.000 must not appear to be at 1.000.
QString sessionSeconds(qint64 time)
{
    const qint64 milliseconds = time / 1000;
    return QStringLiteral("%1%2.%3")
        .arg(milliseconds < 0 ? QStringLiteral("-") : QString())
        .arg(qAbs(milliseconds) / 1000)
        .arg(qAbs(milliseconds) % 1000, 3, 10, QLatin1Char('0'));
}

} // namespace Vorn::Workbench
