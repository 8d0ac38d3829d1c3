#ifndef VORN_WORKBENCH_WRITEALL_H
#define VORN_WORKBENCH_WRITEALL_H

#include <QByteArray>

namespace Vorn::Workbench {

/// Writes all of @p bytes to a descriptor. Qt's files do not say why only a part could be written.
/// @return 0, or the error as errno has it
int writeAll(int descriptor, const QByteArray &bytes);

} // namespace Vorn::Workbench

#endif
