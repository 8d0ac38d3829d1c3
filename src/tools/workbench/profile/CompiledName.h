#ifndef VORN_WORKBENCH_COMPILEDNAME_H
#define VORN_WORKBENCH_COMPILEDNAME_H

#include <QString>

namespace Vorn::Workbench {

/// The name that a profile's constant gets from its file: "front_panel" for "front-panel.toml". It
/// need not be one that C++ takes.
QString compiledName(const QString &path);

/// Why a constant of all programs cannot have this name; empty if it can.
QString problemOfName(const QString &name);

} // namespace Vorn::Workbench

#endif
