#include "TextFile.h"

#include "Diagnostic.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

using namespace Vorn;
using namespace Vorn::Workbench;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

} // namespace

class TextFileTest : public testing::Test
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    void write(const char *name, const QByteArray &content)
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(TextFileTest, AreReadWhole)
{
    write("a", QByteArray("x\0y", 3));
    Diagnostics diagnostics;
    EXPECT_EQ(readFile(path("a"), 3, &diagnostics), QByteArray("x\0y", 3));
    EXPECT_TRUE(diagnostics.isEmpty());
}

TEST_F(TextFileTest, ThatCannotBeReadAreOneError)
{
    write("large", QByteArray(4, 'x'));
    ASSERT_EQ(mkdir(path("folder").toLocal8Bit().constData(), 0700), 0);
    const std::pair<const char *, const char *> cases[] = {
        {"large", "larger than"}, {"missing", "No such file"}, {"folder", "it is a folder"}};
    for (const auto &[name, reason] : cases) {
        Diagnostics diagnostics;
        EXPECT_EQ(readFile(path(name), 3, &diagnostics), std::nullopt) << name;
        ASSERT_EQ(diagnostics.size(), 1) << name;
        EXPECT_TRUE(hasErrors(diagnostics));
        EXPECT_EQ(diagnostics.first().file.toStdString(), path(name).toStdString());
        EXPECT_THAT(diagnostics.first().message.toStdString(), testing::HasSubstr(reason));
    }
}

TEST_F(TextFileTest, ThatAreDevicesAreNotOpened)
{
    Diagnostics diagnostics;
    EXPECT_EQ(readFile("/dev/zero", 1'000'000, &diagnostics), std::nullopt);
    ASSERT_EQ(diagnostics.size(), 1);
    EXPECT_EQ(diagnostics.first().message.toStdString(),
              "cannot be read: it is neither a file nor a pipe");
}

TEST_F(TextFileTest, MayBePipesIfAPersonNamesThem)
{
    const QByteArray pipe = path("pipe").toLocal8Bit();
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    Diagnostics diagnostics;
    EXPECT_EQ(readFile(path("pipe"), 100, &diagnostics, Pipes::Refused), std::nullopt);
    ASSERT_EQ(diagnostics.size(), 1);
    EXPECT_THAT(diagnostics.first().message.toStdString(), testing::HasSubstr("it is a pipe"));

    std::thread writer([&pipe] {
        const int fd = open(pipe.constData(), O_WRONLY);
        EXPECT_EQ(::write(fd, "con", 3), 3);
        EXPECT_EQ(::write(fd, "tent", 4), 4);
        close(fd);
    });
    EXPECT_EQ(readFile(path("pipe"), 100, &diagnostics), QByteArray("content"));
    writer.join();
}

TEST_F(TextFileTest, WithoutAnEndAreGivenUp)
{
    const QByteArray pipe = path("pipe").toLocal8Bit();
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    const int both = open(pipe.constData(), O_RDWR);
    ASSERT_EQ(::write(both, "content", 7), 7);
    Diagnostics diagnostics;
    EXPECT_EQ(readFile(path("pipe"), 3, &diagnostics), std::nullopt);
    close(both);
    ASSERT_EQ(diagnostics.size(), 1);
    EXPECT_THAT(diagnostics.first().message.toStdString(), testing::HasSubstr("larger than"));
}

TEST_F(TextFileTest, ThatArePipesAreNoLongerWaitedForAfterASignal)
{
    const QByteArray pipe = path("pipe").toLocal8Bit();
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, &before);
    // Again and again: the first one may come before the wait.
    const itimerval often = {{0, 10'000}, {0, 10'000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    Diagnostics diagnostics;
    EXPECT_EQ(readFile(path("pipe"), 100, &diagnostics), std::nullopt);
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    ASSERT_EQ(diagnostics.size(), 1);
    EXPECT_THAT(diagnostics.first().message.toStdString(), testing::HasSubstr("interrupted"));
}

TEST_F(TextFileTest, AreWrittenWhole)
{
    EXPECT_EQ(writeFile(path("new"), "content").toStdString(), "");
    EXPECT_EQ(contentOf(path("new")).toStdString(), "content");
    EXPECT_EQ(writeFile(path("new"), "other").toStdString(), "");
    EXPECT_EQ(contentOf(path("new")).toStdString(), "other");
}

TEST_F(TextFileTest, KeepTheirContentWhenTheyCannotBeWritten)
{
    const QString error = writeFile(path("missing/new"), "content");
    EXPECT_THAT(error.toStdString(), testing::HasSubstr("missing/new cannot be written: "));
    EXPECT_FALSE(QFileInfo::exists(path("missing/new")));
}

// In the test's own folder: a mistake must not cost the machine its devices.
TEST_F(TextFileTest, ArePipesAndStayPipes)
{
    const QByteArray pipe = path("pipe").toLocal8Bit();
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    const int reader = open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(writeFile(path("pipe"), "content").toStdString(), "");
    char read[16] = {};
    EXPECT_EQ(::read(reader, read, sizeof read), 7);
    EXPECT_STREQ(read, "content");
    close(reader);
    struct stat status = {};
    ASSERT_EQ(stat(pipe.constData(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

// A limit is as good as a disk that is full, and smaller than what a file's buffer holds.
TEST_F(TextFileTest, StayAsTheyWereWhenTheDiskIsFull)
{
    write("old", "the old content");
    EXPECT_EXIT(
        {
            std::signal(SIGXFSZ, SIG_IGN);
            rlimit limit = {};
            getrlimit(RLIMIT_FSIZE, &limit);
            limit.rlim_cur = 3000;
            setrlimit(RLIMIT_FSIZE, &limit);
            const QByteArray content(4000, 'x');
            const QByteArray error = writeFile(path("old"), content).toLocal8Bit();
            static_cast<void>(std::fputs(error.constData(), stderr));
            std::_Exit(error.isEmpty() ? 0 : 3);
        },
        testing::ExitedWithCode(3), "old cannot be written: File too large");
    EXPECT_EQ(contentOf(path("old")).toStdString(), "the old content");
    EXPECT_EQ(QDir(QFileInfo(path("old")).path()).entryList(QDir::Files), QStringList("old"));
}

TEST_F(TextFileTest, ThatAreDevicesTellWhenTheyAreFull)
{
    ASSERT_TRUE(QFile::link("/dev/full", path("full")));
    EXPECT_THAT(writeFile(path("full"), "content").toStdString(),
                testing::EndsWith("full cannot be written: No space left on device"));
}

TEST_F(TextFileTest, AddTheirErrorBehindThoseBefore)
{
    Diagnostics diagnostics{Diagnostic{Diagnostic::Severity::Error, "before", 0, 0, "wrong"}};
    EXPECT_FALSE(readFile("/missing", 100, &diagnostics));
    ASSERT_EQ(diagnostics.size(), 2);
    EXPECT_EQ(diagnostics.last().toString().toStdString(),
              "/missing: error: cannot be read: No such file or directory");
}

TEST_F(TextFileTest, AreTheStandardOutputIfTheyAreADash)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(writeFile("-", "abc").toStdString(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "abc");
}

TEST_F(TextFileTest, TellOnceThatTheStandardOutputIsFull)
{
    if (!QFile::exists("/dev/full"))
        GTEST_SKIP() << "no /dev/full";
    std::fflush(stdout);
    const int saved = dup(STDOUT_FILENO);
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    dup2(full, STDOUT_FILENO);
    close(full);
    const QString error = writeFile("-", "abc");
    dup2(saved, STDOUT_FILENO);
    close(saved);
    EXPECT_EQ(error.toStdString(),
              "the standard output cannot be written: No space left on device");
    EXPECT_EQ(std::ferror(stdout), 0);
    testing::internal::CaptureStdout();
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "nothing is left to be written";
}
