#ifndef VORN_TESTS_PROGRAMFILES_H
#define VORN_TESTS_PROGRAMFILES_H

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <elf.h>
#include <link.h>

/// Files that are programs, or look like it.
class ProgramFiles
{
public:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QString write(const QString &name, const QByteArray &bytes, bool isExecutable = true) const
    {
        QFile file(path(name));
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner
                            | (isExecutable ? QFile::ExeOwner : QFile::Permission(0)));
        return file.fileName();
    }

    /// A program whose loader is a shell script: what it says of its libraries can be chosen.
    QString writeLoadedBy(const QByteArray &script) const
    {
        const QString loader = write("loader", "#!/bin/sh\n" + script);
        return write("program", elf(QFile::encodeName(loader)));
    }

    static ElfW(Ehdr) header()
    {
        // The machine is this one's, so it is taken from this one's program.
        QFile own("/proc/self/exe");
        own.open(QIODevice::ReadOnly);
        ElfW(Ehdr) header = {};
        own.read(reinterpret_cast<char *>(&header), sizeof header);
        header.e_phoff = sizeof header;
        header.e_phnum = 1;
        return header;
    }

    static QByteArray bytes(const ElfW(Ehdr) & header)
    {
        return {reinterpret_cast<const char *>(&header), sizeof header};
    }

    static QByteArray bytes(const ElfW(Phdr) & segment)
    {
        return {reinterpret_cast<const char *>(&segment), sizeof segment};
    }

    static ElfW(Phdr) segment(const QByteArray &loader)
    {
        ElfW(Phdr) segment = {};
        segment.p_type = PT_INTERP;
        segment.p_offset = sizeof(ElfW(Ehdr)) + sizeof(ElfW(Phdr));
        segment.p_filesz = static_cast<decltype(segment.p_filesz)>(loader.size() + 1);
        return segment;
    }

    static QByteArray elf(const QByteArray &loader)
    {
        return bytes(header()) + bytes(segment(loader)) + loader + '\0';
    }

private:
    QTemporaryDir m_folder;
};

#endif
