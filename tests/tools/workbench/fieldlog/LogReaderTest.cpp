#include "LogReader.h"

#include "LogText.h"
#include "ProductLog.h"

#include <log4cplus/fileappender.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <QDateTime>

#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Vorn;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct Result
{
    std::vector<Vorn::Workbench::LogLine> lines;
    std::vector<std::string> texts; ///< "3 Input: message"
    std::vector<std::string> diagnostics;
    LogCounts counts;
    QStringList files;
    std::string layout;
};

Result resultOf(const QStringList &files, const LogReaderOptions &options = {})
{
    LogReader reader(files, options);
    Result result;
    while (const std::optional<Vorn::Workbench::LogLine> line = reader.next()) {
        result.lines.push_back(*line);
        result.texts.push_back(std::to_string(line->number) + " " + line->logger.toStdString()
                               + ": " + line->message.toStdString());
    }
    EXPECT_FALSE(reader.next()) << "nothing comes behind the end";
    for (const Diagnostic &diagnostic : reader.diagnostics())
        result.diagnostics.push_back(diagnostic.toString().toStdString());
    result.counts = reader.counts();
    result.files = reader.files();
    result.layout = reader.layoutText().toStdString();
    return result;
}

Result resultOf(const QByteArray &content, const LogReaderOptions &options = {})
{
    const LogFolder folder;
    return resultOf(QStringList{folder.write("app.log", content)}, options);
}

std::string date(const Vorn::Workbench::LogLine &line)
{
    return QDateTime::fromMSecsSinceEpoch(line.time.value_or(0) / 1000, Qt::UTC)
        .toString(Qt::ISODateWithMs)
        .toStdString();
}

QByteArray record(const QByteArray &front, int value = 1)
{
    return front + "LinuxInputListener:  type: 1 code:115 value:" + QByteArray::number(value)
        + '\n';
}

} // namespace

TEST(LogReader, ReadsWhatALogOfTheProductHas)
{
    const Result result =
        resultOf("INFO  LinuxInputListener: Event device /dev/input/event0 ready\n"
                 "DEBUG LinuxInputListener:  type: 1 code:115 value:1\n"
                 "INFO  player.Playlist: 42 tracks\n");
    EXPECT_THAT(result.texts,
                ElementsAre("1 LinuxInputListener: Event device /dev/input/event0 "
                            "ready",
                            "2 LinuxInputListener:  type: 1 code:115 value:1",
                            "3 player.Playlist: 42 tracks"));
    EXPECT_EQ(result.layout, "pattern '%-5p %c: %m%n' (guessed, without times)");
    EXPECT_THAT(result.diagnostics, IsEmpty());
    EXPECT_EQ(result.counts.lines, 3);
    EXPECT_EQ(result.counts.files, 1);
    EXPECT_EQ(result.counts.notUnderstood, 0);
    EXPECT_EQ(result.lines.front().time, std::nullopt);
    EXPECT_EQ(result.lines.front().level, LogLevel::Info);
}

TEST(LogReader, ReadsWhatAFileAppenderWrote)
{
    const LogFolder folder;
    const QString path = folder.path("app.log");
    {
        const log4cplus::SharedAppenderPtr appender(
            new log4cplus::FileAppender(path.toStdString()));
        appender->setLayout(patternLayout("%d{%Y-%m-%dT%H:%M:%S.%q}Z [%t] %-5p %c - %m%n"));
        log4cplus::Logger logger = log4cplus::Logger::getInstance("KeyProcessing");
        logger.addAppender(appender);
        logger.setLogLevel(log4cplus::TRACE_LOG_LEVEL);
        LOG4CPLUS_DEBUG(logger, "Found already event for code:115");
        LOG4CPLUS_WARN(logger, "two\nlines");
        logger.removeAppender(appender);
        logger.setLogLevel(log4cplus::NOT_SET_LOG_LEVEL);
    }
    const Result result = resultOf(QStringList{path});
    EXPECT_THAT(
        result.texts,
        ElementsAre("1 KeyProcessing: Found already event for code:115", "2 KeyProcessing: two"));
    EXPECT_THAT(
        result.diagnostics,
        ElementsAre(HasSubstr("app.log: warning: 1 line does not fit the layout and is left "
                              "out: line 3")));
    const qint64 now = QDateTime::currentMSecsSinceEpoch() * 1000;
    EXPECT_NEAR(static_cast<double>(result.lines.at(0).time.value_or(0)), static_cast<double>(now),
                600e6);
    EXPECT_TRUE(result.lines.at(0).hasDate);
    EXPECT_NE(result.lines.at(0).thread, "");
}

TEST(LogReader, PassesOverEverythingBeforeTheLibrarysLines)
{
    QByteArray log;
    for (int i = 0; i < 5000; ++i)
        log += "INFO  player.Start: step " + QByteArray::number(i) + '\n';
    const Result result = resultOf(log + record("DEBUG "));
    ASSERT_FALSE(result.texts.empty());
    EXPECT_EQ(result.texts.back(), "5001 LinuxInputListener:  type: 1 code:115 value:1");
    EXPECT_EQ(result.counts.lines, 5001);
    EXPECT_EQ(result.counts.before + static_cast<qint64>(result.lines.size()), 5001);
    EXPECT_GE(result.counts.before, 4600);
}

TEST(LogReader, CountsTheBytesOfAllFiles)
{
    const LogFolder folder;
    const QByteArray log = record("DEBUG ");
    const Result result = resultOf({folder.write("a.log", log), folder.write("b.log", log)});
    EXPECT_EQ(result.counts.bytes, 2 * log.size());
    EXPECT_EQ(result.counts.lines, 2);
    EXPECT_EQ(result.counts.before, 0);
}

TEST(LogReader, LooksAtSoManyLinesBeforeTheLibrarysFirst)
{
    const auto before = [](int count) {
        const QByteArray log = QByteArray("INFO  player: x\n").repeated(count) + record("DEBUG ");
        return resultOf(log).counts.before;
    };
    EXPECT_EQ(before(0), 0);
    EXPECT_EQ(before(399), 0);
    EXPECT_EQ(before(400), 200);
    EXPECT_EQ(before(599), 200);
    EXPECT_EQ(before(600), 400);
}

TEST(LogReader, KeepsAMegabyteBeforeTheLibrarysFirstLine)
{
    const QByteArray line = "INFO  player: " + QByteArray(200'000, 'x') + '\n';
    EXPECT_EQ(resultOf(line.repeated(5) + record("DEBUG ")).counts.before, 0);
    EXPECT_EQ(resultOf(line.repeated(6) + record("DEBUG ")).counts.before, 6);
    EXPECT_EQ(resultOf(line.repeated(8) + record("DEBUG ")).counts.before, 6);
    const Result result = resultOf(record("DEBUG ") + line.repeated(8) + record("DEBUG ", 0));
    EXPECT_THAT(result.lines, SizeIs(10));
}

TEST(LogReader, SeesALayoutThatChangesByTwoLines)
{
    const QByteArray usual = record("DEBUG ").repeated(250);
    const Result damaged = resultOf(usual + record("10:00:00 [x] DEBUG "));
    EXPECT_EQ(damaged.lines.size(), 250U);
    EXPECT_THAT(damaged.diagnostics,
                ElementsAre(HasSubstr("1 line does not fit the layout and is left out: line 251")));
    const Result changed = resultOf(usual + record("10:00:00 [x] DEBUG ").repeated(2));
    EXPECT_EQ(changed.lines.size(), 252U);
    EXPECT_THAT(changed.diagnostics,
                ElementsAre(HasSubstr("app.log:251: warning: the layout changes here: ")));
}

TEST(LogReader, SaysWhichLayoutsItHasMet)
{
    const Result result =
        resultOf(record("DEBUG ").repeated(250) + record("[1] DEBUG ").repeated(9));
    EXPECT_EQ(result.layout,
              "pattern '%-5p %c: %m%n'; pattern '[%i] %-5p %c: %m%n' (guessed, without times)");
}

TEST(LogReader, TakesTheYearFromWhenEachFileWasWritten)
{
    const LogFolder folder;
    const QString first = folder.write("a.log", record("Jan 02 10:00:00 DEBUG "));
    const QString second = folder.write("b.log", record("Jan 03 10:00:00 DEBUG "));
    for (const QString &path : {first, second}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime(QDate(2020, 5, 1), QTime(10, 0), Qt::UTC),
                                     QFileDevice::FileModificationTime));
    }
    const Result result = resultOf({first, second});
    ASSERT_THAT(result.lines, SizeIs(2));
    EXPECT_EQ(date(result.lines[0]), "2020-01-02T10:00:00.000Z");
    EXPECT_EQ(date(result.lines[1]), "2020-01-03T10:00:00.000Z");
    EXPECT_THAT(result.diagnostics,
                ElementsAre((first
                             + ": warning: the dates have no year; the log is taken to end in the "
                               "year in which the file was last written")
                                .toStdString()));
}

TEST(LogReader, OrdersFilesByTheirDatesOnly)
{
    const LogFolder folder;
    const QString later = folder.write("a", record("11:00:00 DEBUG "));
    const QString earlier = folder.write("b", record("10:00:00 DEBUG "));
    const Result result = resultOf({later, earlier});
    EXPECT_THAT(result.files, ElementsAre(later, earlier)) << "times of a day tell no order";
    EXPECT_THAT(result.diagnostics, testing::Contains(HasSubstr("read in the order given")));
}

TEST(LogReader, SaysThatALogWithoutLoggersIsTheLibrarys)
{
    EXPECT_THAT(resultOf("DEBUG - Vorn::InputEvent(3) click\n").diagnostics, IsEmpty());
    LogReaderOptions options;
    options.pattern = "%p - %m%n";
    EXPECT_THAT(resultOf("DEBUG - Vorn::InputEvent(3) click\n", options).diagnostics, IsEmpty());
    EXPECT_THAT(resultOf("DEBUG - x Vorn::InputEvent(3) click\n", options).diagnostics,
                ElementsAre(HasSubstr("no log of the library: in 1 lines")));
    options.pattern = "%p %c - %m%n";
    EXPECT_THAT(resultOf("DEBUG player - Vorn::InputEvent(3) click\n", options).diagnostics,
                ElementsAre(HasSubstr("no log of the library")));
    EXPECT_THAT(resultOf("DEBUG Input - x\n", options).diagnostics, IsEmpty());
}

TEST(LogReader, LeavesOutWhatDoesNotFitAndCountsIt)
{
    QByteArray log = record("DEBUG ");
    for (int i = 0; i < 9; ++i)
        log += "    at Some.function(Some.java:12)\n";
    log += record("DEBUG ", 0);
    log += QByteArray("\xff\xfe\0\x01 rubbish\n", 13);
    log += "WARN  Input: \xc3\x28 x\nDEBU";
    const Result result = resultOf(log);
    EXPECT_THAT(result.texts,
                ElementsAre("1 LinuxInputListener:  type: 1 code:115 value:1",
                            "11 LinuxInputListener:  type: 1 code:115 value:0",
                            "13 Input: \xef\xbf\xbd( x"));
    EXPECT_EQ(result.counts.notUnderstood, 11);
    EXPECT_THAT(
        result.diagnostics,
        ElementsAre(HasSubstr("11 lines do not fit the layout and are left out: lines 2, 3, "
                              "4, 5, 6 …")));
}

TEST(LogReader, TakesNoLineOfAnotherCentury)
{
    const QByteArray good = record("2026-01-02 10:00:00 DEBUG ").repeated(30);
    EXPECT_THAT(resultOf(good + record("2726-01-02 10:00:00 DEBUG ") + good).diagnostics,
                ElementsAre(HasSubstr("1 line does not fit the layout and is left out: line 31")));
}

TEST(LogReader, SaysThatALogIsNotTheLibrarys)
{
    const Result other = resultOf("hello\nINFO foo: bar\nInput is here\n");
    EXPECT_THAT(other.texts, IsEmpty());
    EXPECT_THAT(other.diagnostics,
                ElementsAre(HasSubstr(
                    "app.log: error: no log of the library: in 3 lines there is no message of the "
                    "loggers 'Input', 'BasicInputHandler', 'LinuxInputListener', 'KeyProcessing'; "
                    "if it is one, give its layout with --pattern")));
    EXPECT_EQ(other.layout, "unknown");

    LogReaderOptions options;
    options.pattern = "%p %c: %m%n";
    EXPECT_THAT(resultOf("INFO foo: bar\n", options).diagnostics,
                ElementsAre(HasSubstr("check --pattern, and that these loggers were on")));
}

TEST(LogReader, SaysThatAFileIsEmpty)
{
    EXPECT_THAT(resultOf(QByteArray()).diagnostics,
                ElementsAre(HasSubstr("app.log: warning: the file is empty")));
}

TEST(LogReader, SaysWhatItCouldNotRead)
{
    const LogFolder folder;
    const QString path =
        folder.write("app.log", record("2026-01-02 10:00:00 DEBUG ") + "rubbish\n");
    const Result result = resultOf({path, folder.path("none")});
    EXPECT_THAT(result.lines, SizeIs(1));
    EXPECT_THAT(result.diagnostics,
                ElementsAre(HasSubstr("none: warning: no line of the library with a date"),
                            HasSubstr("none: error: cannot be read: No such file or directory"),
                            HasSubstr("app.log: warning: 1 line does not fit the layout")));
}

TEST(LogReader, SaysThatALineIsTooLong)
{
    const Result result = resultOf(record("DEBUG ") + "WARN  foo: " + QByteArray(1'000'000, 'x')
                                   + '\n' + record("DEBUG ", 0));
    EXPECT_THAT(result.lines, SizeIs(3));
    EXPECT_THAT(result.diagnostics,
                ElementsAre(HasSubstr("app.log:2: warning: the line is longer than 256 KiB")));
}

TEST(LogReader, FollowsAnUpdateThatChangesTheLayout)
{
    QByteArray log;
    for (int i = 0; i < 300; ++i)
        log += record("DEBUG ", i % 2);
    for (int i = 0; i < 300; ++i)
        log += record("2026-01-02 10:00:00,000 DEBUG ", i % 2);
    const Result result = resultOf(log);
    EXPECT_THAT(result.lines, SizeIs(600));
    EXPECT_EQ(result.counts.notUnderstood, 0);
    EXPECT_THAT(result.diagnostics,
                ElementsAre(HasSubstr("app.log:301: warning: the layout changes here: pattern "
                                      "'%D{%Y-%m-%d %H:%M:%S,%q} %-5p %c: %m%n'")));
    EXPECT_TRUE(result.lines.back().hasDate);
}

TEST(LogReader, DoesNotTakeAWordThatVariesForAnotherLayout)
{
    QByteArray log;
    for (int i = 0; i < 300; ++i)
        log += record("10:00:00 start DEBUG ", i % 2);
    log += record("10:00:01 playing DEBUG ");
    const Result result = resultOf(log);
    EXPECT_THAT(result.lines, SizeIs(301));
    EXPECT_THAT(result.diagnostics, IsEmpty());
}

TEST(LogReader, SaysThatDatesLeaveTheDayOpen)
{
    EXPECT_THAT(resultOf(record("02/03/2026 10:00:00 DEBUG ")).diagnostics,
                ElementsAre(HasSubstr("the dates do not show which number is the day and which the "
                                      "month; read with the pattern '%D{%m/%d/%Y %H:%M:%S}")));
    EXPECT_THAT(resultOf(record("31/03/2026 10:00:00 DEBUG ")).diagnostics, IsEmpty());
    EXPECT_THAT(resultOf(record("2026-03-02 10:00:00 DEBUG ")).diagnostics, IsEmpty());
}

TEST(LogReader, ReadsTwoLayoutsInOneFile)
{
    QByteArray log;
    for (int i = 0; i < 20; ++i) {
        log += record("DEBUG ", 1);
        log += record("[1] DEBUG ", 0);
    }
    EXPECT_THAT(resultOf(log).lines, SizeIs(40));
}

TEST(LogReader, TakesTheGivenPattern)
{
    LogReaderOptions options;
    options.pattern = "%m @%c@ %p%n";
    const Result result =
        resultOf(" type: 1 code:2 value:3 @LinuxInputListener@ DEBUG\nrubbish\n", options);
    EXPECT_THAT(result.texts, ElementsAre("1 LinuxInputListener:  type: 1 code:2 value:3"));
    EXPECT_EQ(result.layout, "pattern '%m @%c@ %p%n' (without times)");

    options.pattern = "%p %y %m%n";
    EXPECT_THAT(resultOf("x\n", options).diagnostics,
                ElementsAre("--pattern:1:4: error: log4cplus has no conversion '%y'"));
}

TEST(LogReader, TellsProcessesApart)
{
    const Result result =
        resultOf(record("Jan 02 10:00:00 h player[7]: DEBUG ")
                 + "Jan 02 10:00:00 h player[8]: DEBUG Input: Vorn::InputEvent(3) click\n"
                   "Jan 02 10:00:01 h systemd-journald[9]: Suppressed 12 messages from x\n");
    ASSERT_THAT(result.lines, SizeIs(3));
    EXPECT_EQ(result.lines[0].process, "player[7]");
    EXPECT_EQ(result.lines[1].process, "player[8]");
    EXPECT_EQ(result.lines[2].lost, 12);
    EXPECT_THAT(result.diagnostics, ElementsAre(HasSubstr("the dates have no year")));
}

TEST(LogReader, SeesARestartInRelativeTimes)
{
    QByteArray log;
    for (const char *time : {"10", "50000", "49990", "12", "13", "9"})
        log += record(QByteArray(time) + " [140007988410176] DEBUG ");
    const Result result = resultOf(log);
    ASSERT_THAT(result.lines, SizeIs(6));
    EXPECT_EQ(result.lines[1].time, 50'000'000);
    EXPECT_EQ(result.lines[2].process, "");
    EXPECT_EQ(result.lines[3].process, "start 2");
    EXPECT_EQ(result.lines[5].process, "start 2") << "another thread";
}

TEST(LogReader, GoesOverMidnightWithoutDates)
{
    const Result result = resultOf(record("23:59:59.999 DEBUG ") + record("00:00:00.001 DEBUG "));
    ASSERT_THAT(result.lines, SizeIs(2));
    EXPECT_EQ(*result.lines[1].time - *result.lines[0].time, 2000);
    EXPECT_FALSE(result.lines[1].hasDate);
}

TEST(LogReader, KeepsTheMoreExactOfTwoTimes)
{
    const Result inner =
        resultOf(record("2026-01-02T11:00:00+0100 h player[7]: 11:00:00,250 DEBUG ")
                 + record("2026-01-02T11:00:01+0100 h player[7]: 11:00:00,750 DEBUG ", 0));
    ASSERT_THAT(inner.lines, SizeIs(2));
    EXPECT_EQ(date(inner.lines[0]), "2026-01-02T10:00:00.250Z");
    EXPECT_EQ(date(inner.lines[1]), "2026-01-02T10:00:00.750Z");
    const Result dated =
        resultOf(record("2026-01-02T11:00:00+0100 h player[7]: 2026-01-02 10:00:00,250 DEBUG "));
    ASSERT_THAT(dated.lines, SizeIs(1));
    EXPECT_EQ(date(dated.lines[0]), "2026-01-02T10:00:00.250Z");
}

TEST(LogReader, ReadsTheJournalsJson)
{
    const Result result = resultOf(
        R"({"__REALTIME_TIMESTAMP":"1767348001000000","_PID":"7","SYSLOG_IDENTIFIER":"player",)"
        R"("MESSAGE":"DEBUG - Vorn::InputEvent(3) click"})"
        "\n"
        R"({"__REALTIME_TIMESTAMP":"1767348001000001","_COMM":"sshd","MESSAGE":"hello"})"
        "\n");
    ASSERT_THAT(result.lines, SizeIs(2));
    EXPECT_EQ(result.lines[0].message, "Vorn::InputEvent(3) click");
    EXPECT_EQ(result.lines[0].level, LogLevel::Debug);
    EXPECT_EQ(result.lines[0].time, 1'767'348'001'000'000);
    EXPECT_EQ(result.lines[1].message, "hello");
    EXPECT_EQ(result.layout,
              "journal (JSON), in it the pattern '%-5p - %m%n' (guessed, without loggers)");
}

TEST(LogReader, ReadsThePartsOfALogInOrder)
{
    const LogFolder folder;
    const QByteArray day = "2026-01-0";
    folder.write("app.log", record(day + "3 10:00:00 DEBUG "));
    folder.write("app.log.1", record(day + "2 10:00:00 DEBUG "));
    folder.write("app.log.2.gz", gzipped(record(day + "1 10:00:00 DEBUG ")));
    LogReaderOptions options;
    options.rotated = true;
    const Result result = resultOf(QStringList{folder.path("app.log")}, options);
    EXPECT_THAT(
        result.files,
        ElementsAre(folder.path("app.log.2.gz"), folder.path("app.log.1"), folder.path("app.log")));
    ASSERT_THAT(result.lines, SizeIs(3));
    EXPECT_EQ(date(result.lines[0]), "2026-01-01T10:00:00.000Z");
    EXPECT_EQ(result.lines[2].file, 2);
    EXPECT_EQ(result.counts.files, 3);
}

TEST(LogReader, ReadsAPipeToItsEnd)
{
    const LogFolder folder;
    const QString path = folder.path("pipe");
    ASSERT_EQ(mkfifo(path.toLocal8Bit().constData(), 0600), 0);
    std::thread product([&] {
        const QByteArray log = record("DEBUG ") + record("DEBUG ", 0);
        const int pipe = open(path.toLocal8Bit().constData(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(write(pipe, log.constData(), static_cast<std::size_t>(log.size())), log.size());
        close(pipe);
    });
    EXPECT_THAT(resultOf(QStringList{path}).lines, SizeIs(2));
    product.join();
}

TEST(LogReader, KeepsWhatComesBeforeADefect)
{
    QByteArray log;
    for (int i = 0; i < 10'000; ++i)
        log += record("DEBUG ", i);
    const LogFolder folder;
    const QByteArray packed = gzipped(log);
    const Result result =
        resultOf(QStringList{folder.write("app.log.gz", packed.left(packed.size() / 2))});
    EXPECT_GT(result.lines.size(), 1000U);
    EXPECT_THAT(result.diagnostics,
                testing::Contains(HasSubstr("error: the compressed data ends "
                                            "too early")));
}

TEST(LogReader, GoesOnLookingBehindLinesThatNoLayoutReads)
{
    // Neither a word of so many bytes nor, as it is no text, one that is the same in all lines.
    const QByteArray damaged = QByteArray(2000, '\xff') + " Input: Vorn::InputEvent(3) click\n";
    const Result result = resultOf(damaged.repeated(700) + record("DEBUG "));
    EXPECT_THAT(result.texts, ElementsAre("701 LinuxInputListener:  type: 1 code:115 value:1"));
    EXPECT_EQ(result.counts.before, 600);
}

TEST(LogReader, GivesUpOnALogThatOnlyLooksLikeTheLibrarys)
{
    QByteArray log;
    for (int i = 0; i < 20'000; ++i)
        log += "<li>Event device </li>\n";
    EXPECT_LE(resultOf(log).lines.size(), 20'000U);
}
