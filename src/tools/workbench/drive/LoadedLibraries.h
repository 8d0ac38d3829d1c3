#ifndef VORN_WORKBENCH_LOADEDLIBRARIES_H
#define VORN_WORKBENCH_LOADEDLIBRARIES_H

#include <QString>
#include <QStringList>

namespace Vorn::Workbench {

/// What is loaded with a program when it starts.
struct LoadedLibraries
{
    QString error; ///< why it cannot be told, or why the program cannot start
    QStringList names; ///< "libQt5Core.so.5", also those that other libraries need
};

/// Asks the program's own loader, which runs none of the program's code for it. Nobody else knows
/// where it looks: run paths, LD_LIBRARY_PATH, its cache, and folders that depend on the processor.
/// @param loader its file, as the program names it
LoadedLibraries loadedLibraries(const QString &program, const QString &loader);

} // namespace Vorn::Workbench

#endif
