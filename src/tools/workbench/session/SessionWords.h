#ifndef VORN_WORKBENCH_SESSIONWORDS_H
#define VORN_WORKBENCH_SESSIONWORDS_H

#include <QString>
#include <QVector>

/// How remarks and reasons speak of times and keys.
namespace Vorn::Workbench {

/// "12.402 s", for µs.
QString timeText(qint64 time);

/// "KEY_STOP + KEY_PLAY"
QString joinedKeys(const QVector<int> &codes);

} // namespace Vorn::Workbench

#endif
