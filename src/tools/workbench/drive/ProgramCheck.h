#ifndef VORN_WORKBENCH_PROGRAMCHECK_H
#define VORN_WORKBENCH_PROGRAMCHECK_H

#include <QString>

#include <sys/types.h>

namespace Vorn::Workbench {

/// Why a program cannot be driven; empty if it can. One line, for people. Runs nothing of it.
///
/// A program that is started without these checks may run without the preloaded library, which is
/// to say on the machine's real devices, and the loader would say so only in passing.
QString obstacleToDrive(const QString &program);

/// What a file gives a program beyond the rights of @p user and @p group, who start it: "is
/// set-user-id". The loader preloads nothing then. Empty if nothing.
QString gainOfRights(const QString &path, uid_t user, gid_t group);

} // namespace Vorn::Workbench

#endif
