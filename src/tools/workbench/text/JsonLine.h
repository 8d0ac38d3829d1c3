#ifndef VORN_WORKBENCH_JSONLINE_H
#define VORN_WORKBENCH_JSONLINE_H

#include <QByteArray>
#include <QJsonObject>

namespace Vorn::Workbench {

/// An object as one line of JSON, line feed included. What a terminal must not get, see
/// isPrintable(), is escaped: "\u009b".
QByteArray jsonLine(const QJsonObject &object);

} // namespace Vorn::Workbench

#endif
