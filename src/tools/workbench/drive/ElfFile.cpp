#include "ElfFile.h"

#include <QFile>

#include <elf.h>
#include <link.h>

#include <climits>
#include <cstring>

namespace Vorn::Workbench {

namespace {

// As the kernel limits it: a damaged count does not fill the memory.
constexpr quint64 maxTableSize = quint64{64} * 1024;

QString architecture(int machine)
{
    switch (machine) {
    case EM_386:
    case EM_X86_64:
        return QStringLiteral("x86");
    case EM_ARM:
    case EM_AARCH64:
        return QStringLiteral("ARM");
    case EM_RISCV:
        return QStringLiteral("RISC-V");
    case EM_MIPS:
        return QStringLiteral("MIPS");
    case EM_PPC:
    case EM_PPC64:
        return QStringLiteral("PowerPC");
    default:
        return QStringLiteral("machine %1").arg(machine);
    }
}

/// The first fields have the same places in all classes of ELF files.
QString machineOf(const QByteArray &start)
{
    const bool isBigEndian = start.at(EI_DATA) == ELFDATA2MSB;
    const auto low = static_cast<uchar>(start.at(EI_NIDENT + (isBigEndian ? 3 : 2)));
    const auto high = static_cast<uchar>(start.at(EI_NIDENT + (isBigEndian ? 2 : 3)));
    return QStringLiteral("%1-bit %2%3")
        .arg(start.at(EI_CLASS) == ELFCLASS64 ? 64 : 32)
        .arg(architecture(high << 8 | low),
             isBigEndian ? QStringLiteral(", big-endian") : QString());
}

/// @return nothing where the file has less than @p size bytes there
QByteArray bytesAt(QIODevice *file, quint64 offset, quint64 size)
{
    const auto length = static_cast<quint64>(file->size());
    if (offset > length || size > length - offset || !file->seek(static_cast<qint64>(offset)))
        return {};
    const QByteArray bytes = file->read(static_cast<qint64>(size));
    return static_cast<quint64>(bytes.size()) == size ? bytes : QByteArray();
}

void damaged(ElfFile *result, const char *what)
{
    result->kind = ElfFile::Kind::Damaged;
    result->error = QLatin1String(what);
}

/// @param header of the loader's name
void readLoader(QIODevice *file, const ElfW(Phdr) & header, ElfFile *result)
{
    const QByteArray name = header.p_filesz <= PATH_MAX
        ? bytesAt(file, header.p_offset, header.p_filesz)
        : QByteArray();
    if (name.size() < 2 || !name.endsWith('\0'))
        return damaged(result, "the name of its loader is not in the file");
    result->loader = QFile::decodeName(name.constData());
}

void readProgramHeaders(QIODevice *file, const QByteArray &start, ElfFile *result)
{
    ElfW(Ehdr) header = {};
    if (static_cast<std::size_t>(start.size()) < sizeof header)
        return damaged(result, "it ends within its header");
    std::memcpy(&header, start.constData(), sizeof header);
    if (header.e_type != ET_EXEC && header.e_type != ET_DYN) {
        result->kind = ElfFile::Kind::Other;
        return;
    }
    const quint64 size = quint64(header.e_phnum) * sizeof(ElfW(Phdr));
    const QByteArray table = header.e_phentsize == sizeof(ElfW(Phdr)) && size <= maxTableSize
        ? bytesAt(file, header.e_phoff, size)
        : QByteArray();
    if (table.isEmpty())
        return damaged(result, "its program headers are not in the file");
    result->kind = ElfFile::Kind::Program;
    for (int i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment = {};
        std::memcpy(&segment, table.constData() + std::size_t(i) * sizeof segment, sizeof segment);
        // The kernel takes the first.
        if (segment.p_type == PT_INTERP)
            return readLoader(file, segment, result);
    }
}

} // namespace

ElfFile readElfFile(QIODevice *file)
{
    ElfFile result;
    const QByteArray start = file->read(sizeof(ElfW(Ehdr)));
    if (!start.startsWith(ELFMAG))
        return result;
    if (start.size() < EI_NIDENT + 4) {
        damaged(&result, "it ends within its header");
        return result;
    }
    result.machine = machineOf(start);
    static const QString own = ownMachine();
    if (result.machine == own || own.isEmpty())
        readProgramHeaders(file, start, &result);
    else
        result.kind = ElfFile::Kind::Foreign;
    return result;
}

QString ownMachine()
{
    QFile file(QStringLiteral("/proc/self/exe"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray start = file.read(sizeof(ElfW(Ehdr)));
    return start.size() < EI_NIDENT + 4 ? QString() : machineOf(start);
}

} // namespace Vorn::Workbench
