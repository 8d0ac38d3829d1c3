#include "InputFile.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <fcntl.h>

#include <algorithm>

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
    InputFile missing;
    EXPECT_EQ(missing.openForReading("/missing").toStdString(), "No such file or directory");
}

TEST(InputFile, TellsWhatSomethingIsBeforeItIsOpened)
{
    // Nobody can open a socket, so what is said of it is known without.
    const QTemporaryDir folder;
    const QByteArray path = folder.filePath("socket").toLocal8Bit();
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(static_cast<std::size_t>(path.size()), sizeof(address.sun_path));
    std::copy(path.cbegin(), path.cend(), address.sun_path);
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr *>(&address), sizeof(address)), 0);
    InputFile file;
    EXPECT_EQ(file.openForReading(path).toStdString(), "it is neither a file nor a pipe");
    close(server);
}

TEST(InputFile, RefusesAPipeWhereOnlyFilesAreRead)
{
    const QTemporaryDir folder;
    const QByteArray path = folder.filePath("pipe").toLocal8Bit();
    ASSERT_EQ(mkfifo(path.constData(), 0600), 0);
    InputFile file;
    EXPECT_EQ(file.openForReading(path, Pipes::Refused).toStdString(),
              "it is a pipe; only files named on the command line can be");
}

TEST(InputFile, RemembersWhichFilesWereRead)
{
    const QTemporaryDir folder;
    for (const char *name : {"read", "other"}) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    InputFile file;
    ASSERT_EQ(file.openForReading(folder.filePath("read")).toStdString(), "");
    ASSERT_TRUE(QFile::link(folder.filePath("read"), folder.filePath("link")));
    EXPECT_TRUE(wasRead(folder.filePath("read")));
    EXPECT_TRUE(wasRead(folder.filePath("link")));
    EXPECT_FALSE(wasRead(folder.filePath("other")));
    EXPECT_FALSE(wasRead(folder.filePath("missing")));
    EXPECT_FALSE(wasRead(folder.path()));
}
