#ifndef VORN_WORKBENCH_PROFILEFILE_H
#define VORN_WORKBENCH_PROFILEFILE_H

#include "InputFile.h"
#include "ProfileReader.h"

#include <QString>

namespace Vorn::Workbench {

/// Reads a profile from what a person named on the command line, pipes included; "-" is the
/// standard input. Otherwise like loadProfile().
ParsedProfile openProfile(const QString &path, Pipes pipes = Pipes::Allowed);

} // namespace Vorn::Workbench

#endif
