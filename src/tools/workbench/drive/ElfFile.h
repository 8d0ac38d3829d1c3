#ifndef VORN_WORKBENCH_ELFFILE_H
#define VORN_WORKBENCH_ELFFILE_H

#include <QIODevice>
#include <QString>

namespace Vorn::Workbench {

/// What the headers of a program's file say.
struct ElfFile
{
    enum class Kind { NotElf, Damaged, Foreign, Other, Program };

    Kind kind = Kind::NotElf; ///< Foreign: for another machine. Other: not to be run
    QString error; ///< what is damaged
    QString machine; ///< "64-bit x86"
    QString loader; ///< the file that loads it; empty if it is linked statically
};

/// @param file open, and not sequential
ElfFile readElfFile(QIODevice *file);

/// The machine that this process is for.
QString ownMachine();

} // namespace Vorn::Workbench

#endif
