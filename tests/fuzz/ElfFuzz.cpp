#include "ElfFile.h"

#include <QBuffer>

#include <cstdint>
#include <cstdlib>

using namespace Vorn::Workbench;

/// A file is of one kind, with what its message needs.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<int>(size));
    QBuffer file(&bytes);
    file.open(QIODevice::ReadOnly);
    const ElfFile elf = readElfFile(&file);
    const bool isElf = elf.kind != ElfFile::Kind::NotElf;
    const bool isDamaged = elf.kind == ElfFile::Kind::Damaged;
    if (isElf
            != bytes.startsWith("\x7f"
                                "ELF")
        || isDamaged == elf.error.isEmpty() || (isElf && !isDamaged && elf.machine.isEmpty())
        || elf.loader.size() > bytes.size())
        std::abort();
    return 0;
}
