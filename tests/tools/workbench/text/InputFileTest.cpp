#include "InputFile.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <fcntl.h>

using namespace Vorn::Workbench;

TEST(InputFile, KnowsTheSizeOfAFile)
{
    const QTemporaryDir folder;
    QFile written(folder.filePath("a"));
    ASSERT_TRUE(written.open(QIODevice::WriteOnly));
    written.write("abc");
    written.close();

    InputFile file;
    EXPECT_EQ(file.openForReading(written.fileName()).toStdString(), "");
    EXPECT_EQ(file.size(), 3);
    char bytes[10];
    EXPECT_EQ(file.read(bytes, sizeof bytes), 3);
    EXPECT_EQ(file.read(bytes, sizeof bytes), 0);
}

TEST(InputFile, PassesOnWhatIsInAPipeAtOnce)
{
    const QTemporaryDir folder;
    const QByteArray path = folder.filePath("pipe").toLocal8Bit();
    ASSERT_EQ(mkfifo(path.constData(), 0600), 0);
    InputFile file;
    ASSERT_EQ(file.openForReading(path).toStdString(), "");
    EXPECT_EQ(file.size(), 0);
    const int writer = open(path.constData(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(writer, 0);
    char bytes[10];
    ASSERT_EQ(write(writer, "abc", 3), 3);
    EXPECT_EQ(file.read(bytes, sizeof bytes), 3);
    ASSERT_EQ(write(writer, "d", 1), 1);
    EXPECT_EQ(file.read(bytes, sizeof bytes), 1);
    close(writer);
    EXPECT_EQ(file.read(bytes, sizeof bytes), 0);
}

TEST(InputFile, RefusesWhatIsNoFile)
{
    InputFile device;
    EXPECT_EQ(device.openForReading("/dev/zero").toStdString(), "it is neither a file nor a pipe");
    InputFile folder;
    EXPECT_EQ(folder.openForReading("/").toStdString(), "it is a folder");
}
