#include "OutputFile.h"

#include "TextFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <unistd.h>

using namespace Vorn;
using namespace Vorn::Workbench;
using testing::HasSubstr;

namespace {

class OutputFileTest : public testing::Test
{
protected:
    const Overwrite polite{"<!-- ours -->", false};
    const Overwrite forced{"<!-- ours -->", true};

    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    void put(const char *name, const QByteArray &content) const
    {
        EXPECT_EQ(writeFile(path(name), content).toStdString(), "");
    }

    QByteArray contentOf(const char *name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }

    QStringList names() const { return QDir(m_folder.path()).entryList(QDir::Files); }

private:
    const QTemporaryDir m_folder;
};

} // namespace

TEST_F(OutputFileTest, ReplacesWhatItRecognises)
{
    put("ours", "head\n<!-- ours -->\nold");
    put("empty", "");
    for (const char *name : {"ours", "empty", "new"}) {
        EXPECT_EQ(writeFile(path(name), "new", polite).toStdString(), "") << name;
        EXPECT_EQ(contentOf(name).toStdString(), "new") << name;
    }
}

TEST_F(OutputFileTest, LeavesOtherFilesAloneUnlessForced)
{
    put("theirs", "wait 1s\n");
    EXPECT_THAT(obstacleTo(path("theirs"), polite).toStdString(), HasSubstr("--force"));
    EXPECT_THAT(writeFile(path("theirs"), "new", polite).toStdString(),
                HasSubstr("theirs exists, and vorn-input did not write it; choose another file"));
    EXPECT_EQ(contentOf("theirs").toStdString(), "wait 1s\n");
    EXPECT_EQ(writeFile(path("theirs"), "new", forced).toStdString(), "");
    EXPECT_EQ(contentOf("theirs").toStdString(), "new");
}

TEST_F(OutputFileTest, NeverReplacesWhatWasRead)
{
    put("input", "<!-- ours --> and read");
    ASSERT_TRUE(QFile::link(path("input"), path("link")));
    ASSERT_EQ(link(path("input").toLocal8Bit(), path("hard").toLocal8Bit()), 0);
    EXPECT_EQ(obstacleTo(path("input"), polite).toStdString(), "");
    Diagnostics diagnostics;
    ASSERT_TRUE(readFile(path("link"), 100, &diagnostics));
    for (const char *name : {"input", "link", "hard"}) {
        EXPECT_THAT(writeFile(path(name), "new", forced).toStdString(),
                    HasSubstr("is one of the files that were read"))
            << name;
        EXPECT_EQ(contentOf(name).toStdString(), "<!-- ours --> and read") << name;
    }
}

TEST_F(OutputFileTest, FindsOutBeforehandAndLeavesNothingBehind)
{
    put("file", "content");
    EXPECT_THAT(obstacleTo(path("")).toStdString(), HasSubstr("is a folder; name a file"));
    EXPECT_THAT(obstacleTo(path("missing/new")).toStdString(),
                HasSubstr("missing/new cannot be written: No such file or directory; choose"));
    EXPECT_THAT(obstacleTo(path("file/new")).toStdString(), HasSubstr("Not a directory"));
    EXPECT_EQ(obstacleTo(path("new")).toStdString(), "");
    EXPECT_EQ(obstacleTo(path("file")).toStdString(), "");
    EXPECT_EQ(obstacleTo("-").toStdString(), "");
    EXPECT_EQ(obstacleTo("/dev/null", polite).toStdString(), "");
    EXPECT_EQ(names(), QStringList("file"));
    EXPECT_EQ(contentOf("file").toStdString(), "content");
}
