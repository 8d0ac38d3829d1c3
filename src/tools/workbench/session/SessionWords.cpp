#include "SessionWords.h"

#include "EventNames.h"
#include "SessionTime.h"

#include <QStringList>

namespace Vorn::Workbench {

QString timeText(qint64 time)
{
    return sessionSeconds(time) + QStringLiteral(" s");
}

QString joinedKeys(const QVector<int> &codes)
{
    QStringList names;
    for (const int code : codes)
        names += keyName(code);
    return names.join(QStringLiteral(" + "));
}

} // namespace Vorn::Workbench
