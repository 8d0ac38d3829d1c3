#include "RecordingFolder.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

using namespace Vorn::Workbench;
using testing::HasSubstr;

namespace {

class RecordingFolderTest : public testing::Test
{
protected:
    QString pathOf(const QString &name) const { return m_temporary.filePath(name); }

    void write(const QString &name, const QByteArray &content) const
    {
        QFile file(pathOf(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    std::string contentOf(const QString &name) const
    {
        QFile file(pathOf(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "(unreadable)";
    }

private:
    const QTemporaryDir m_temporary;
};

} // namespace

TEST_F(RecordingFolderTest, IsMadeWithTheFoldersAboveIt)
{
    RecordingFolder folder(pathOf("above/session"));
    EXPECT_EQ(folder.open().toStdString(), "");
    EXPECT_TRUE(QDir(pathOf("above/session")).exists());
}

TEST_F(RecordingFolderTest, SaysWhyItCannotBeMade)
{
    write("file", "");
    RecordingFolder folder(pathOf("file/below"));
    EXPECT_THAT(folder.open().toStdString(), testing::EndsWith("file/below': Not a directory"));
}

TEST_F(RecordingFolderTest, IsRefusedIfItHoldsAnyPartOfARecording)
{
    for (const char *name : {"session.umockdev", "event3.evemu", "event12.ioctl"}) {
        write(name, "kept");
        RecordingFolder folder(pathOf("."));
        EXPECT_EQ(folder.open().toStdString(),
                  "'" + pathOf(".").toStdString() + "' already holds a recording ('" + name
                      + "'); choose another folder, or remove it");
        EXPECT_EQ(contentOf(name), "kept");
        QFile::remove(pathOf(name));
    }
    write("notes.txt", "of somebody else");
    RecordingFolder folder(pathOf("."));
    EXPECT_EQ(folder.open().toStdString(), "");
}

TEST_F(RecordingFolderTest, HasEverythingOnDiskAtOnce)
{
    RecordingFolder folder(pathOf("."));
    const auto file = folder.create("session.jsonl", "start\n");
    ASSERT_TRUE(file);
    EXPECT_EQ(contentOf("session.jsonl"), "start\n");
    folder.append(file.get(), "next\n");
    EXPECT_EQ(contentOf("session.jsonl"), "start\nnext\n");
    folder.replace("README", "old");
    folder.replace("README", "new");
    EXPECT_EQ(contentOf("README"), "new");
    EXPECT_EQ(folder.error().toStdString(), "");
}

TEST_F(RecordingFolderTest, KeepsTheFirstError)
{
    RecordingFolder folder(pathOf("missing"));
    const auto file = folder.create("first", {});
    EXPECT_FALSE(file);
    folder.append(file.get(), "lost");
    folder.replace("second", "lost");
    EXPECT_THAT(folder.error().toStdString(), HasSubstr("missing/first': No such file"));
}

TEST_F(RecordingFolderTest, MakesAScriptExecutable)
{
    RecordingFolder folder(pathOf("."));
    folder.replace("replay.sh", "#!/bin/sh\n");
    EXPECT_FALSE(QFile::permissions(pathOf("replay.sh")) & QFileDevice::ExeUser);
    folder.makeExecutable("replay.sh");
    EXPECT_TRUE(QFile::permissions(pathOf("replay.sh")) & QFileDevice::ExeUser);
}

TEST_F(RecordingFolderTest, HasNoHalfLinesWhenTheDiskIsFull)
{
    RecordingFolder folder(pathOf("."));
    const auto file = folder.create("session.jsonl", "start\n");
    EXPECT_EXIT(
        {
            std::signal(SIGXFSZ, SIG_IGN);
            rlimit limit = {};
            getrlimit(RLIMIT_FSIZE, &limit);
            limit.rlim_cur = 3000;
            setrlimit(RLIMIT_FSIZE, &limit);
            folder.append(file.get(), QByteArray(3000, 'x'));
            static_cast<void>(std::fputs(folder.error().toLocal8Bit().constData(), stderr));
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "session.jsonl': File too large");
    EXPECT_EQ(contentOf("session.jsonl"), "start\n");
}

TEST_F(RecordingFolderTest, IsForTheOwnerAloneIfItIsTo)
{
    const mode_t usual = umask(022);
    const auto modeOf = [this](const QString &name) {
        struct stat status = {};
        EXPECT_EQ(stat(pathOf(name).toLocal8Bit().constData(), &status), 0);
        return status.st_mode & 0777;
    };
    const auto fill = [](RecordingFolder *folder) {
        EXPECT_EQ(folder->open().toStdString(), "");
        folder->create("event0.evemu", "typed");
        folder->replace("event0.ioctl", "down");
        folder->replace("replay.sh", "script");
        folder->makeExecutable("replay.sh");
    };
    RecordingFolder hidden(pathOf("hidden"), RecordingFolder::Readers::Owner);
    fill(&hidden);
    EXPECT_EQ(modeOf("hidden"), 0700);
    EXPECT_EQ(modeOf("hidden/event0.evemu"), 0600);
    EXPECT_EQ(modeOf("hidden/event0.ioctl"), 0600);
    EXPECT_EQ(modeOf("hidden/replay.sh"), 0700);

    RecordingFolder open(pathOf("open"));
    fill(&open);
    EXPECT_EQ(modeOf("open"), 0755);
    EXPECT_EQ(modeOf("open/event0.evemu"), 0644);
    EXPECT_EQ(modeOf("open/event0.ioctl"), 0644);
    EXPECT_EQ(modeOf("open/replay.sh"), 0755);
    EXPECT_EQ(umask(usual), 022U);
}

TEST_F(RecordingFolderTest, LeavesNothingOfARecordingThatIsGivenUp)
{
    write("notes.txt", "of somebody else");
    RecordingFolder used(pathOf("."));
    ASSERT_EQ(used.open().toStdString(), "");
    used.create("session.jsonl", {});
    used.replace("README", "text");
    used.discard();
    EXPECT_EQ(QDir(pathOf(".")).entryList(QDir::Files), QStringList("notes.txt"));

    RecordingFolder made(pathOf("new"));
    ASSERT_EQ(made.open().toStdString(), "");
    made.create("session.jsonl", {});
    made.discard();
    EXPECT_FALSE(QFile::exists(pathOf("new")));
}

TEST_F(RecordingFolderTest, LeavesAloneWhatIsWrittenAfterItWasGivenUp)
{
    RecordingFolder folder(pathOf("."));
    ASSERT_EQ(folder.open().toStdString(), "");
    folder.replace("README", "a recording");
    folder.discard();
    EXPECT_FALSE(QFile::exists(pathOf("README")));
    write("README", "of somebody else");
    folder.discard();
    EXPECT_EQ(contentOf("README"), "of somebody else");
}
