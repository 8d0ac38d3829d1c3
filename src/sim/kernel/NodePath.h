#ifndef VORN_SIM_NODEPATH_H
#define VORN_SIM_NODEPATH_H

#include <QByteArray>

namespace Vorn::Sim {

constexpr char deviceFolder[] = "/dev";
constexpr char inputFolder[] = "/dev/input";

/// "/dev/input/eventN" for @p number N.
QByteArray nodePath(int number);

/// The number N of "/dev/input/eventN"; -1 for any other path.
int nodeNumber(const char *path);

/// Whether @p path is that of something in /dev/input, which need not exist.
bool isBelowInputFolder(const char *path);

} // namespace Vorn::Sim

#endif
