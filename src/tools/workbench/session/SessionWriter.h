#ifndef VORN_WORKBENCH_SESSIONWRITER_H
#define VORN_WORKBENCH_SESSIONWRITER_H

#include "Session.h"

#include <QByteArray>

namespace Vorn::Workbench {

/// One line of JSON including its line end. Equal entries give equal bytes. docs/session.md
/// documents the format, which is stable.
QByteArray toJsonLine(const SessionEntry &entry);

} // namespace Vorn::Workbench

#endif
