#include "LogFile.h"

#include "LogText.h"

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct Content
{
    std::vector<std::string> lines;
    std::string error;
    qint64 bytes = 0;
};

Content contentOf(const QString &path)
{
    Content content;
    LogFile file;
    content.error = file.open(path).toStdString();
    if (!content.error.empty())
        return content;
    while (file.next()) {
        content.lines.emplace_back(file.line());
        EXPECT_EQ(file.number(), static_cast<qint64>(content.lines.size()));
    }
    content.error = file.error().toStdString();
    content.bytes = file.bytes();
    return content;
}

Content contentWith(const QByteArray &bytes)
{
    const LogFolder folder;
    return contentOf(folder.write("log", bytes));
}

QByteArray manyLines()
{
    QByteArray lines;
    for (int i = 0; i < 50'000; ++i)
        lines += "line " + QByteArray::number(i) + '\n';
    return lines;
}

} // namespace

TEST(LogFile, HasTheLinesOfAFile)
{
    const Content content = contentWith("a\r\n\nb");
    EXPECT_THAT(content.lines, ElementsAre("a", "", "b"));
    EXPECT_EQ(content.bytes, 5);
    EXPECT_THAT(contentWith(QByteArray()).lines, IsEmpty());
    EXPECT_THAT(contentWith("\xef\xbb\xbf"
                            "a\n")
                    .lines,
                ElementsAre("a"))
        << "a byte order mark";
}

TEST(LogFile, LeavesOutTheZerosThatALossOfPowerLeaves)
{
    EXPECT_THAT(contentWith(QByteArray("\0\0\0a\nb\0c\n\0\0", 10)).lines,
                ElementsAre("a", std::string("b\0c", 3), ""));
}

TEST(LogFile, ReadsLinesAcrossItsBuffer)
{
    const Content content = contentWith(manyLines());
    ASSERT_EQ(content.lines.size(), 50'000U);
    for (std::size_t i = 0; i < content.lines.size(); ++i)
        ASSERT_EQ(content.lines[i], "line " + std::to_string(i));
    EXPECT_EQ(content.bytes, manyLines().size());
}

TEST(LogFile, CutsLinesThatAreTooLong)
{
    const LogFolder folder;
    const QByteArray content = "a\n" + QByteArray(3'000'000, 'x') + "\nb\n";
    for (const QByteArray &bytes : {content, gzipped(content)}) {
        LogFile file;
        ASSERT_EQ(file.open(folder.write("log", bytes)), "");
        ASSERT_TRUE(file.next());
        EXPECT_FALSE(file.isCut());
        ASSERT_TRUE(file.next());
        EXPECT_TRUE(file.isCut());
        EXPECT_EQ(file.line().size(), LogFile::maxLineSize);
        ASSERT_TRUE(file.next());
        EXPECT_FALSE(file.isCut());
        EXPECT_EQ(file.line(), "b");
        EXPECT_EQ(file.number(), 3);
    }
}

TEST(LogFile, CutsALineBehindTheLastByteThatItKeeps)
{
    const auto isCut = [](int before, int size) {
        const LogFolder folder;
        LogFile file;
        const QByteArray content =
            QByteArray(before, 'a') + '\n' + QByteArray(size, 'x') + "\nend\n";
        EXPECT_EQ(file.open(folder.write("log", content)), "");
        EXPECT_TRUE(file.next());
        EXPECT_TRUE(file.next());
        const bool result = file.isCut();
        EXPECT_EQ(file.line(),
                  std::string(static_cast<std::size_t>(
                                  std::min(size, static_cast<int>(LogFile::maxLineSize))),
                              'x'));
        EXPECT_TRUE(file.next());
        EXPECT_EQ(file.line(), "end");
        EXPECT_FALSE(file.isCut());
        return result;
    };
    const int longest = static_cast<int>(LogFile::maxLineSize);
    for (const int before : {0, 1, 1000, longest - 1, longest}) {
        EXPECT_FALSE(isCut(before, longest - 1)) << before;
        EXPECT_FALSE(isCut(before, longest)) << before;
        EXPECT_TRUE(isCut(before, longest + 1)) << before;
        EXPECT_TRUE(isCut(before, 2 * longest)) << before;
    }
    for (const int before : {0, 1, 1000})
        EXPECT_TRUE(isCut(before, 2 * longest - before - 1))
            << "two buffers are full, and the next one begins with the end of the line";
}

TEST(LogFile, LeavesOutOneMarkAndOneReturn)
{
    EXPECT_THAT(contentWith("\xef\xbb\xbf\r\n\xef\xbb\xbf"
                            "b\r\r\n\r\n")
                    .lines,
                ElementsAre("",
                            "\xef\xbb\xbf"
                            "b\r",
                            ""));
    EXPECT_THAT(contentWith("\xc3\xa4\n").lines, ElementsAre("\xc3\xa4"));
    EXPECT_THAT(contentWith("\n").lines, ElementsAre(""));
}

TEST(LogFile, ReadsPipesThatGiveAByteAtATime)
{
    const LogFolder folder;
    const QString path = folder.path("pipe");
    ASSERT_EQ(mkfifo(path.toLocal8Bit().constData(), 0600), 0);
    const QByteArray bytes = gzipped("a\nb\n");
    LogFile file;
    ASSERT_EQ(file.open(path), "");
    std::thread writer([&] {
        const int pipe = open(path.toLocal8Bit().constData(), O_WRONLY | O_CLOEXEC);
        for (const char byte : bytes) {
            EXPECT_EQ(write(pipe, &byte, 1), 1);
            // The reader has to come for each.
            int waiting = 1;
            while (waiting > 0)
                EXPECT_EQ(ioctl(pipe, FIONREAD, &waiting), 0);
        }
        close(pipe);
    });
    std::vector<std::string> lines;
    while (file.next())
        lines.emplace_back(file.line());
    writer.join();
    EXPECT_THAT(lines, ElementsAre("a", "b"));
    EXPECT_EQ(file.error(), "");
    EXPECT_EQ(file.bytes(), 4);
}

TEST(LogFile, UnpacksWhatGzipPacked)
{
    const Content content = contentWith(gzipped(manyLines()));
    EXPECT_EQ(content.error, "");
    EXPECT_EQ(content.bytes, manyLines().size());
    ASSERT_EQ(content.lines.size(), 50'000U);
    EXPECT_EQ(content.lines.back(), "line 49999");
    EXPECT_THAT(contentWith(gzipped("a\n") + gzipped("b\n")).lines, ElementsAre("a", "b"))
        << "two files, one after the other";
    EXPECT_EQ(contentWith(gzipped("a\n") + gzipped("b\n")).error, "");
    EXPECT_EQ(contentWith(gzipped("a\n") + QByteArray(100, '\0')).error, "") << "a tape's block";
    EXPECT_EQ(contentWith(gzipped("a\n")).bytes, 2);
    EXPECT_THAT(contentWith(gzipped("a\n") + QByteArray(100, '\0')).lines, ElementsAre("a"));
    EXPECT_THAT(contentWith(gzipped("")).lines, IsEmpty());
}

TEST(LogFile, KeepsWhatComesBeforeADefect)
{
    const QByteArray whole = gzipped(manyLines());
    const Content half = contentWith(whole.left(whole.size() / 2));
    EXPECT_GT(half.lines.size(), 10'000U);
    EXPECT_EQ(half.lines.front(), "line 0");
    EXPECT_THAT(half.error, HasSubstr("ends too early"));

    QByteArray damaged = whole;
    for (auto i = damaged.size() / 2; i < damaged.size() / 2 + 100; ++i)
        damaged[i] = '\xff';
    const Content part = contentWith(damaged);
    EXPECT_GT(part.lines.size(), 1'000U);
    EXPECT_EQ(part.lines.front(), "line 0");
    EXPECT_THAT(part.error, HasSubstr("damaged"));

    EXPECT_THAT(contentWith(gzipped("a\n") + "rubbish").error, HasSubstr("damaged"));
    EXPECT_THAT(contentWith(QByteArray("\x1f\x8b")).error, HasSubstr("ends too early"));
}

TEST(LogFile, ReadsPipes)
{
    const LogFolder folder;
    const QString path = folder.path("pipe");
    ASSERT_EQ(mkfifo(path.toLocal8Bit().constData(), 0600), 0);
    for (const QByteArray &bytes : {QByteArray("a\nb\n"), gzipped("a\nb\n")}) {
        LogFile file;
        ASSERT_EQ(file.open(path), "");
        const int writer = open(path.toLocal8Bit().constData(), O_WRONLY | O_CLOEXEC);
        ASSERT_EQ(write(writer, bytes.constData(), static_cast<std::size_t>(bytes.size())),
                  bytes.size());
        close(writer);
        std::vector<std::string> lines;
        while (file.next())
            lines.emplace_back(file.line());
        EXPECT_THAT(lines, ElementsAre("a", "b"));
    }
}

TEST(LogFile, SaysWhyItCannotBeRead)
{
    EXPECT_THAT(contentOf(QStringLiteral("/no/such")).error, HasSubstr("No such file"));
    EXPECT_EQ(contentOf(QStringLiteral("/")).error, "it is a folder");
}
