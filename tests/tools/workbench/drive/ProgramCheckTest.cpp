#include "ProgramCheck.h"

#include "ProgramFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Vorn::Workbench;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

std::string obstacle(const QString &program)
{
    const QString line = obstacleToDrive(program);
    EXPECT_FALSE(line.contains('\n')) << line.toStdString();
    return line.toStdString();
}

class ProgramCheckTest : public testing::Test, protected ProgramFiles
{
protected:
    ~ProgramCheckTest() override { qputenv("PATH", m_path); }

private:
    const QByteArray m_path = qgetenv("PATH");
};

} // namespace

TEST_F(ProgramCheckTest, TakesAProgramThatLinksTheLibrary)
{
    EXPECT_EQ(obstacle(QCoreApplication::applicationFilePath()), "");
    // Whatever its name: its libraries are found from where the file itself is.
    ASSERT_TRUE(QFile::link(QCoreApplication::applicationFilePath(), path("link")));
    EXPECT_EQ(obstacle(path("link")), "");
}

TEST_F(ProgramCheckTest, LooksForAProgramAsAShellDoes)
{
    QDir(path("")).mkdir("empty");
    QDir(path("")).mkdir("first");
    write("first/product", "", false);
    ASSERT_TRUE(QFile::link(QCoreApplication::applicationFilePath(), path("product")));
    qputenv("PATH", QFile::encodeName(path("empty") + ':' + path("first") + ':' + path("")));
    EXPECT_EQ(obstacle("product"), "");

    const QString here = QDir::currentPath();
    QDir::setCurrent(path(""));
    qputenv("PATH", "/nowhere:");
    EXPECT_EQ(obstacle("product"), "");
    qputenv("PATH", "/nowhere");
    EXPECT_EQ(obstacle("product"),
              "product is in no folder of PATH; name it with its folder, as in ./product");
    EXPECT_EQ(obstacle("./product"), "");
    QDir::setCurrent(here);
}

TEST_F(ProgramCheckTest, RefusesWhatCannotBeStarted)
{
    EXPECT_EQ(obstacle(""), "no program is given; name it after --");
    EXPECT_THAT(obstacle(path("missing")),
                MatchesRegex("/.*/missing cannot be started: No such file or directory; .*"));
    EXPECT_THAT(obstacle(path("")), HasSubstr(" is a folder; "));
    EXPECT_THAT(obstacle("/dev/null"), HasSubstr(" is not a file; "));
    EXPECT_THAT(obstacle(write("data", "x", false)), HasSubstr(" may not be executed; "));
    // Opened, it would wait for a writer.
    ASSERT_EQ(mkfifo(QFile::encodeName(path("pipe")).constData(), 0700), 0);
    EXPECT_THAT(obstacle(path("pipe")), HasSubstr(" is not a file; "));
}

TEST_F(ProgramCheckTest, NamesTheProgramThatRunsAScript)
{
    EXPECT_THAT(obstacle(write("a", "#! /usr/bin/env python3\nimport os\n")),
                HasSubstr("/a is a script, run by /usr/bin/env; name the program that it starts"));
    EXPECT_THAT(obstacle(write("b", "#!/bin/sh")), HasSubstr("/b is a script, run by /bin/sh;"));
    EXPECT_THAT(obstacle(write("c", "echo without the first line\n")),
                HasSubstr("/c is not a program: it has no ELF header;"));
    EXPECT_THAT(obstacle(write("d", "")), HasSubstr("/d is not a program"));
}

TEST_F(ProgramCheckTest, RefusesProgramsForOtherMachines)
{
    ElfW(Ehdr) other = header();
    other.e_machine = EM_AARCH64;
    other.e_ident[EI_CLASS] = ELFCLASS64;
    const std::string own = ElfW(Ehdr)(header()).e_ident[EI_CLASS] == ELFCLASS64 ? "64" : "32";
    EXPECT_THAT(obstacle(write("arm64", bytes(other))),
                HasSubstr("/arm64 is for 64-bit ARM, and this vorn-input for " + own + "-bit "));
    other.e_machine = EM_ARM;
    other.e_ident[EI_CLASS] = ELFCLASS32;
    EXPECT_THAT(obstacle(write("arm", bytes(other))), HasSubstr("is for 32-bit ARM, and "));
    other.e_ident[EI_DATA] = ELFDATA2MSB;
    other.e_machine = 0xadde;
    EXPECT_THAT(obstacle(write("big", bytes(other))),
                HasSubstr("is for 32-bit machine 57005, big-endian, and "));
}

TEST_F(ProgramCheckTest, RefusesWhatIsNoProgram)
{
    ElfW(Ehdr) object = header();
    object.e_type = ET_REL;
    EXPECT_THAT(obstacle(write("object", bytes(object))), HasSubstr("is an ELF file, but not a"));

    ElfW(Phdr) loaded = {};
    loaded.p_type = PT_LOAD;
    EXPECT_THAT(obstacle(write("static", bytes(header()) + bytes(loaded))),
                HasSubstr("/static is linked statically or is a library"));
}

TEST_F(ProgramCheckTest, SurvivesDamagedFiles)
{
    const QByteArray whole = elf("/lib/loader.so");
    for (int size = 4; size < whole.size(); ++size) {
        EXPECT_THAT(obstacle(write("cut", whole.left(size))), HasSubstr("/cut is damaged: "))
            << size;
    }

    ElfW(Ehdr) far = header();
    far.e_phoff = ~decltype(far.e_phoff)(0);
    EXPECT_THAT(obstacle(write("far", bytes(far))), HasSubstr("program headers are not in"));
    ElfW(Ehdr) many = header();
    many.e_phnum = 0xffff;
    EXPECT_THAT(obstacle(write("many", bytes(many) + QByteArray(4'000'000, '\0'))),
                HasSubstr("program headers are not in"));
    ElfW(Ehdr) narrow = header();
    narrow.e_phentsize = 1;
    EXPECT_THAT(obstacle(write("narrow", bytes(narrow) + QByteArray(100, '\0'))),
                HasSubstr("program headers are not in"));
    ElfW(Ehdr) wide = header();
    wide.e_phentsize = sizeof(ElfW(Phdr)) + 1;
    EXPECT_THAT(obstacle(write("wide", bytes(wide) + QByteArray(100, '\0'))),
                HasSubstr("program headers are not in"));

    ElfW(Phdr) name = segment("x");
    name.p_offset = ~decltype(name.p_offset)(0) - 1;
    EXPECT_THAT(obstacle(write("name", bytes(header()) + bytes(name) + "x")),
                HasSubstr("the name of its loader is not in the file"));
    name = segment("x");
    name.p_filesz = ~decltype(name.p_filesz)(0);
    EXPECT_THAT(obstacle(write("name", bytes(header()) + bytes(name) + "x")),
                HasSubstr("the name of its loader is not in the file"));
    EXPECT_THAT(obstacle(write("open", bytes(header()) + bytes(segment("x")) + "xy")),
                HasSubstr("the name of its loader is not in the file"));
}

TEST_F(ProgramCheckTest, TellsWhatTheLoaderMisses)
{
    EXPECT_EQ(obstacle(write("a", elf("/nowhere/ld-linux.so.3"))),
              path("a").toStdString()
                  + " cannot be driven: its loader /nowhere/ld-linux.so.3 does not exist; install "
                    "the libraries of its system");
    EXPECT_THAT(obstacle(writeLoadedBy("echo \"$2: error while loading shared libraries: libx.so: "
                                       "cannot open\" >&2; exit 127\n")),
                HasSubstr("it cannot be loaded (libx.so: cannot open); see that ldd"));
    EXPECT_THAT(obstacle(writeLoadedBy("kill -SEGV $$\n")), HasSubstr("its loader crashes"));
    EXPECT_THAT(obstacle(write("b", elf(QFile::encodeName(write("data", "x", false))))),
                HasSubstr("/data cannot be run: "));
}

TEST_F(ProgramCheckTest, RefusesAProgramWithoutTheLibraryOrWithAnotherQt)
{
    EXPECT_THAT(obstacle("/bin/true"), HasSubstr("/bin/true does not link " VORN_INPUT_LIBRARY));
    EXPECT_THAT(obstacle(writeLoadedBy("printf '\\t%s\\n' '" VORN_INPUT_LIBRARY ".1 => /a/b (0x1)' "
                                       "'libQt7Core.so.7 => /a/c (0x2)'\n")),
                HasSubstr("uses another Qt than Qt " VORN_INPUT_QT " (libQt7Core.so.7); "));
    EXPECT_THAT(obstacle(writeLoadedBy("printf '\\t%s\\n' 'libQtCore.so.4 => /a/c (0x2)'\n")),
                HasSubstr("(libQtCore.so.4)"));
    EXPECT_EQ(obstacle(writeLoadedBy("printf '\\t%s\\n' '/a b/" VORN_INPUT_LIBRARY ".1 (0x1)' "
                                     "'/opt/" VORN_INPUT_LIBRARY ".1 (0x1)' 'libQt" VORN_INPUT_QT
                                     "Core.so.1 => /a'\n")),
              "");
}

TEST_F(ProgramCheckTest, NoticesTheRightsThatAFileGives)
{
    const QString program = write("product", "x");
    const QByteArray name = QFile::encodeName(program);
    struct stat status = {};
    ASSERT_EQ(stat(name.constData(), &status), 0);
    const uid_t other = status.st_uid + 1;
    const gid_t others = status.st_gid + 1;
    const auto gain = [&](uid_t user, gid_t group) {
        return gainOfRights(program, user, group).toStdString();
    };
    EXPECT_EQ(gain(other, others), "");
    ASSERT_EQ(chmod(name.constData(), 04711), 0);
    EXPECT_EQ(gain(other, others), "is set-user-id");
    // Its own user gains nothing by it.
    EXPECT_EQ(gain(status.st_uid, status.st_gid), "");
    ASSERT_EQ(chmod(name.constData(), 02711), 0);
    EXPECT_EQ(gain(other, others), "is set-group-id");
    EXPECT_EQ(gain(other, status.st_gid), "");
    ASSERT_EQ(chmod(name.constData(), 02700), 0);
    EXPECT_EQ(gain(other, others), "");
}

TEST_F(ProgramCheckTest, NoticesFileCapabilities)
{
    // cap_net_raw, permitted and effective, as setcap writes it.
    const QByteArray capability("\x01\0\0\x02\0\x20\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 20);
    const QString program = write("product", "x");
    if (setxattr(QFile::encodeName(program).constData(), "security.capability",
                 capability.constData(), static_cast<std::size_t>(capability.size()), 0)
        != 0)
        GTEST_SKIP() << "only root gives a file capabilities";
    EXPECT_EQ(gainOfRights(program, 1, getgid()).toStdString(), "has file capabilities");
    EXPECT_EQ(gainOfRights(program, 0, getgid()).toStdString(), "");
}

TEST_F(ProgramCheckTest, NamesTheMachineThatAProgramIsFor)
{
    const auto machine = [this](int number, bool is64, bool isBigEndian) {
        ElfW(Ehdr) other = header();
        QByteArray bytes(20, '\0');
        bytes.replace(0, EI_NIDENT,
                      QByteArray(reinterpret_cast<const char *>(other.e_ident), EI_NIDENT));
        bytes[EI_CLASS] = static_cast<char>(is64 ? ELFCLASS64 : ELFCLASS32);
        bytes[EI_DATA] = static_cast<char>(isBigEndian ? ELFDATA2MSB : ELFDATA2LSB);
        bytes[EI_NIDENT + (isBigEndian ? 3 : 2)] = static_cast<char>(number & 0xff);
        bytes[EI_NIDENT + (isBigEndian ? 2 : 3)] = static_cast<char>(number >> 8);
        const std::string text = obstacle(write("other", bytes));
        const std::string start = path("other").toStdString() + " is for ";
        EXPECT_THAT(text, testing::StartsWith(start));
        return text.substr(start.size(), text.find(", and this") - start.size());
    };
    EXPECT_EQ(machine(EM_AARCH64, true, true), "64-bit ARM, big-endian");
    EXPECT_EQ(machine(EM_ARM, false, true), "32-bit ARM, big-endian");
    EXPECT_EQ(machine(EM_RISCV, true, false), "64-bit RISC-V");
    EXPECT_EQ(machine(EM_MIPS, false, true), "32-bit MIPS, big-endian");
    EXPECT_EQ(machine(EM_PPC, false, true), "32-bit PowerPC, big-endian");
    EXPECT_EQ(machine(EM_PPC64, true, false), "64-bit PowerPC");
    EXPECT_EQ(machine(EM_386, false, true), "32-bit x86, big-endian");
    EXPECT_EQ(machine(EM_X86_64, true, true), "64-bit x86, big-endian");
    EXPECT_EQ(machine(0x1234, true, false), "64-bit machine 4660");
}

TEST_F(ProgramCheckTest, SaysWhatToDo)
{
    const auto advice = [](const QString &program) {
        const std::string text = obstacle(program);
        const std::string start = program.toStdString() + ' ';
        EXPECT_THAT(text, testing::StartsWith(start));
        return text.substr(start.size());
    };
    EXPECT_EQ(advice(path("missing")),
              "cannot be started: No such file or directory; build it, or name another program");
    EXPECT_EQ(advice(path("")), "is a folder; name the program in it");
    EXPECT_EQ(advice("/dev/null"), "is not a file; name a program");
    EXPECT_EQ(advice(write("data", "x", false)),
              "may not be executed; name a program, or give the right with chmod +x");
    EXPECT_EQ(advice(write("text", "x")), "is not a program: it has no ELF header; name a program");
    EXPECT_EQ(advice(write("tab", "#!\t/bin/sh\t-e\n")),
              "is a script, run by /bin/sh; name the program that it starts");
    ElfW(Ehdr) object = header();
    object.e_type = ET_REL;
    EXPECT_EQ(advice(write("object", bytes(object))),
              "is an ELF file, but not a program; name a program");
    ElfW(Phdr) loaded = {};
    loaded.p_type = PT_LOAD;
    EXPECT_EQ(advice(write("static", bytes(header()) + bytes(loaded))),
              "is linked statically or is a library, and nothing can be preloaded into it; link "
              "the program dynamically");
    EXPECT_EQ(advice(write("cut", bytes(header()))),
              "is damaged: its program headers are not in the file; build or copy it again");
    EXPECT_EQ(advice(write("short", bytes(header()).left(19))),
              "is damaged: it ends within its header; build or copy it again");
    EXPECT_EQ(advice(write("half", bytes(header()).left(30))),
              "is damaged: it ends within its header; build or copy it again");
    EXPECT_EQ(advice(writeLoadedBy("exit 1\n")),
              "cannot be driven: it cannot be loaded (without a reason); see that ldd finds all "
              "its libraries");
    EXPECT_EQ(advice(writeLoadedBy("kill -SEGV $$\n")),
              "cannot be driven: its loader crashes over it; the file is damaged");
    EXPECT_EQ(advice(writeLoadedBy("echo 'libQt" VORN_INPUT_QT "Core.so.1 => /a (0x1)'\n")),
              "does not link " VORN_INPUT_LIBRARY
              ", neither itself nor through its libraries; name the "
              "program that reads the input devices");
    EXPECT_EQ(advice(writeLoadedBy("echo 'libQt7Core.so.7 => /a (0x1)'\n")),
              "uses another Qt than Qt " VORN_INPUT_QT
              " (libQt7Core.so.7); build it with Qt " VORN_INPUT_QT);
}
