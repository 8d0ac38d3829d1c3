#ifndef VORN_WORKBENCH_SESSIONWRITER_H
#define VORN_WORKBENCH_SESSIONWRITER_H

#include "Session.h"

#include <QByteArray>

namespace Vorn::Workbench {

/// One line of JSON, with the line's end; the same for the same entry. The format is documented in
/// docs/session.md and stable.
QByteArray toJsonLine(const SessionEntry &entry);

} // namespace Vorn::Workbench

#endif
