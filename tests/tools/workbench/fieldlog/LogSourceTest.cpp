#include "LogSource.h"

#include "LogText.h"

#include <QDateTime>

#include <string>

using namespace Vorn;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// "file:number (index) text"
std::string described(const RawLine &line)
{
    return std::to_string(line.file) + ":" + std::to_string(line.number) + " ("
        + std::to_string(line.index) + ") " + std::string(line.text);
}

std::vector<std::string> rest(LogSource *source)
{
    std::vector<std::string> lines;
    RawLine line;
    while (source->next(&line))
        lines.push_back(described(line));
    return lines;
}

std::vector<std::string> messages(const LogSource &source)
{
    std::vector<std::string> texts;
    for (const Diagnostic &diagnostic : source.diagnostics())
        texts.push_back(diagnostic.toString().toStdString());
    return texts;
}

} // namespace

TEST(LogSource, HasTheLinesOfSeveralFiles)
{
    const LogFolder folder;
    LogSource source({folder.write("1", "a\nb\n"), folder.write("2", "c\n")});
    EXPECT_EQ(source.bytes(), 0);
    EXPECT_EQ(source.filesRead(), 0);
    EXPECT_THAT(rest(&source), ElementsAre("0:1 (0) a", "0:2 (1) b", "1:1 (2) c"));
    EXPECT_EQ(source.lines(), 3);
    EXPECT_EQ(source.bytes(), 6);
    EXPECT_EQ(source.filesRead(), 2);
    EXPECT_THAT(messages(source), IsEmpty());
}

TEST(LogSource, CountsTheBytesOfAFileThatItIsReading)
{
    const LogFolder folder;
    LogSource source({folder.write("1", "abc\n"), folder.write("2", "d\n")});
    RawLine line;
    ASSERT_TRUE(source.next(&line));
    EXPECT_EQ(source.bytes(), 4);
    ASSERT_TRUE(source.next(&line));
    EXPECT_EQ(source.bytes(), 6);
    EXPECT_FALSE(source.next(&line));
    EXPECT_EQ(source.bytes(), 6);
}

TEST(LogSource, ReturnsAgainWhatIsPutBack)
{
    const LogFolder folder;
    LogSource source({folder.write("1", "a\nb\nc\nd\n")});
    std::vector<LogSource::Copy> lines;
    RawLine line;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(source.next(&line));
        lines.push_back(LogSource::copyOf(line));
    }
    source.putBack(lines);
    ASSERT_TRUE(source.next(&line));
    EXPECT_EQ(described(line), "0:1 (0) a");
    source.putBack({LogSource::copyOf(line)});
    EXPECT_THAT(rest(&source), ElementsAre("0:1 (0) a", "0:2 (1) b", "0:3 (2) c", "0:4 (3) d"));
    EXPECT_EQ(source.lines(), 4);
}

TEST(LogSource, SaysWhatItCouldNotRead)
{
    const LogFolder folder;
    const QString broken = folder.write("2.gz", gzipped("a\nb\n").left(15));
    const QString empty = folder.write("3", "");
    LogSource source({folder.path("1"), broken, empty, folder.write("4", "c\n")});
    EXPECT_THAT(rest(&source), testing::Contains(HasSubstr(" c")));
    EXPECT_EQ(source.filesRead(), 3);
    EXPECT_THAT(messages(source),
                ElementsAre(HasSubstr("1: error: cannot be read: No such file or directory"),
                            HasSubstr("the compressed data ends too early"),
                            (empty + ": warning: the file is empty").toStdString()));
}

TEST(LogSource, TellsTheFirstLineOfEachFileThatIsTooLong)
{
    const LogFolder folder;
    const QByteArray longLine(300'000, 'x');
    const QByteArray content = "a\n" + longLine + '\n' + longLine + '\n';
    const QString first = folder.write("1", content);
    const QString second = folder.write("2", content);
    LogSource source({first, second});
    EXPECT_EQ(rest(&source).size(), 6U);
    const std::string text = ":2: warning: the line is longer than 256 KiB; what is longer is not "
                             "read";
    EXPECT_THAT(messages(source),
                ElementsAre(first.toStdString() + text, second.toStdString() + text));
}

TEST(LogSource, NamesTheStandardInputForPeople)
{
    const LogSource source({"a.log", "-"});
    EXPECT_EQ(source.name(0), "a.log");
    EXPECT_EQ(source.name(1), "standard input");
    EXPECT_EQ(source.files().join(' '), "a.log -");
}

TEST(LogSource, KnowsWhenAFileWasLastWritten)
{
    const LogFolder folder;
    const QString path = folder.write("1", "a\n");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QDateTime then(QDate(2020, 2, 3), QTime(10, 0), Qt::UTC);
    ASSERT_TRUE(file.setFileTime(then, QFileDevice::FileModificationTime));
    const LogSource source({path, "-"});
    EXPECT_EQ(source.lastDay(0), then.date());
    const QDate before = QDateTime::currentDateTimeUtc().date();
    const QDate today = source.lastDay(1);
    EXPECT_TRUE(today >= before && today <= QDateTime::currentDateTimeUtc().date());
}
