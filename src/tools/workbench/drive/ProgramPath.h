#ifndef VORN_WORKBENCH_PROGRAMPATH_H
#define VORN_WORKBENCH_PROGRAMPATH_H

#include <QString>

namespace Vorn::Workbench {

/// The file that a shell would start for @p program: itself if it has a slash, or else the first
/// executable file of this name in the folders of PATH. Empty if there is none.
QString programPath(const QString &program);

} // namespace Vorn::Workbench

#endif
