#include "LogCoverage.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

enum Line {
    Record,
    ReadData,
    Opened,
    Error,
    Detector,
    Report,
    HandlerTrace,
    HandlerDebug,
    Bus,
};

LibraryLine line(Line which)
{
    switch (which) {
    case Record:
        return {LibraryLogger::LinuxInputListener, LogLevel::Debug, Said::RecordLogged()};
    case ReadData:
        return {LibraryLogger::LinuxInputListener, LogLevel::Trace, Said::ReadBegun()};
    case Opened:
        return {LibraryLogger::LinuxInputListener, LogLevel::Info, Said::ListenerOpened()};
    case Error:
        return {LibraryLogger::LinuxInputListener, LogLevel::Error, Said::ReadFailed()};
    case Detector:
        return {LibraryLogger::KeyProcessing, LogLevel::Debug, Said::KeysStored()};
    case Report:
        return {LibraryLogger::BasicInputHandler, LogLevel::Trace, Said::EventReported()};
    case HandlerTrace:
        return {LibraryLogger::BasicInputHandler, LogLevel::Trace, Said::Entered()};
    case HandlerDebug:
        return {LibraryLogger::BasicInputHandler, LogLevel::Debug, Said::KeyPassedOn()};
    case Bus:
        break;
    }
    return {LibraryLogger::Input, LogLevel::Debug, Said::EventOnBus()};
}

LogCoverage coverage(const std::vector<Line> &lines)
{
    LogCoverage result;
    for (const Line which : lines)
        result.add(line(which));
    return result;
}

const std::string noRecords = "no records: the log has no line of logger LinuxInputListener at "
                              "DEBUG";
const std::string noDescriptors = "records do not say which device they are of: the log has no "
                                  "line of logger LinuxInputListener at TRACE";
const std::string noDetectors = "no steps of the detectors: the log has no line of logger "
                                "KeyProcessing at DEBUG";
const std::string noEvents = "no events: the log has no line of logger Input at DEBUG";
const std::string noReports = "events do not say who reported them, and selections are missing: "
                              "the log has no line of logger BasicInputHandler at TRACE";
const std::string noDevices = "no devices: the log does not show that any was opened";

std::vector<std::string> gaps(const std::vector<Line> &lines, int devices = 1)
{
    std::vector<std::string> texts;
    for (const QString &gap : coverage(lines).gaps(devices))
        texts.push_back(gap.toStdString());
    return texts;
}

/// What is new after further lines, without what is common to all.
std::vector<std::string> news(const std::vector<Line> &before, const std::vector<Line> &then)
{
    std::vector<Line> all = before;
    all.insert(all.end(), then.begin(), then.end());
    const QString front = QStringLiteral("from here on the log has lines of logger ");
    std::vector<std::string> texts;
    for (const QString &text : coverage(all).since(coverage(before))) {
        EXPECT_TRUE(text.startsWith(front)) << text.toStdString();
        texts.push_back(text.mid(front.size()).toStdString());
    }
    return texts;
}

} // namespace

TEST(LogCoverage, SaysWhatIsMissing)
{
    EXPECT_THAT(gaps({Record, ReadData, Detector, Report, Bus}), IsEmpty());
    EXPECT_THAT(gaps({}), ElementsAre(noRecords, noEvents));
    EXPECT_THAT(gaps({}, 0), ElementsAre(noRecords, noEvents, noDevices));
    EXPECT_THAT(gaps({Opened}), ElementsAre(noRecords, noEvents)) << "INFO";
    EXPECT_THAT(gaps({Error}), ElementsAre(noRecords, noEvents));
    EXPECT_THAT(gaps({ReadData}), IsEmpty()) << "nobody has touched it";
    EXPECT_THAT(gaps({Record, Detector, Report, Bus}), IsEmpty()) << "the only device";
    EXPECT_THAT(gaps({Record, Detector, Report, Bus}, 2), ElementsAre(noDescriptors));
    EXPECT_THAT(gaps({Record, Detector, Report, Bus}, 0), ElementsAre(noDescriptors, noDevices));
    EXPECT_THAT(gaps({Record, ReadData, Detector, Report, Bus}, 2), IsEmpty());
    EXPECT_THAT(gaps({Detector, Report, Bus}, 2), ElementsAre(noRecords));
    EXPECT_THAT(gaps({Record, ReadData, Report, Bus}), ElementsAre(noDetectors));
    EXPECT_THAT(gaps({Record, ReadData, Detector}), ElementsAre(noEvents));
    EXPECT_THAT(gaps({Record, ReadData, Detector, HandlerTrace}), ElementsAre(noEvents));
    EXPECT_THAT(gaps({Record, ReadData, Detector, Bus}), ElementsAre(noReports));
    EXPECT_THAT(gaps({Record, ReadData, Detector, HandlerDebug, Bus}), ElementsAre(noReports));
    EXPECT_THAT(gaps({Record, ReadData, Detector, HandlerTrace, Bus}), IsEmpty());
    EXPECT_THAT(gaps({Record, ReadData, Detector, Report}), IsEmpty());
}

TEST(LogCoverage, IsCompleteWithALineOfEachKind)
{
    const std::vector<Line> all = {Record, ReadData, Detector, Report, Bus};
    EXPECT_TRUE(coverage(all).isComplete());
    for (const Line missing : all) {
        std::vector<Line> others;
        for (const Line one : all) {
            if (one != missing)
                others.push_back(one);
        }
        EXPECT_FALSE(coverage(others).isComplete()) << missing;
        others.push_back(HandlerTrace);
        others.push_back(Opened);
        EXPECT_FALSE(coverage(others).isComplete()) << missing;
    }
}

TEST(LogCoverage, KnowsWhichLinesThereAre)
{
    const LogCoverage none;
    EXPECT_FALSE(none.hasRecords() || none.hasDetectors() || none.hasReports() || none.hasEvents());
    EXPECT_TRUE(coverage({Record, ReadData}).hasRecords());
    EXPECT_FALSE(coverage({ReadData}).hasRecords());
    EXPECT_TRUE(coverage({Detector, Bus}).hasDetectors());
    EXPECT_FALSE(coverage({Bus, Record, Report}).hasDetectors());
    EXPECT_TRUE(coverage({Bus}).hasEvents());
    EXPECT_TRUE(coverage({Report}).hasEvents());
    EXPECT_FALSE(coverage({HandlerTrace}).hasEvents());
    EXPECT_TRUE(coverage({HandlerTrace, HandlerDebug}).hasReports());
    EXPECT_FALSE(coverage({HandlerDebug}).hasReports());
    EXPECT_FALSE(coverage({ReadData}).hasReports());
}

TEST(LogCoverage, KeepsInMindWhatItHasSeen)
{
    std::vector<Line> lines = {Record, ReadData, Detector, Report, Bus};
    for (const Line later : {HandlerDebug, HandlerTrace, Opened, Error}) {
        lines.push_back(later);
        EXPECT_TRUE(coverage(lines).isComplete()) << later;
    }
    EXPECT_TRUE(coverage({Report, HandlerTrace}).hasEvents());
    EXPECT_THAT(gaps({Error, Record, ReadData, Detector, Report, HandlerDebug, Error}), IsEmpty());
}

TEST(LogCoverage, SaysWhatComesLater)
{
    EXPECT_THAT(news({}, {}), IsEmpty());
    EXPECT_THAT(news({}, {Record}), ElementsAre("LinuxInputListener at DEBUG"));
    EXPECT_THAT(news({}, {Record, ReadData, Detector}), ElementsAre("LinuxInputListener at DEBUG"))
        << "their absence had not been told";
    EXPECT_THAT(news({Record}, {ReadData}), ElementsAre("LinuxInputListener at TRACE"));
    EXPECT_THAT(news({Record, ReadData}, {ReadData}), IsEmpty());
    EXPECT_THAT(news({Record}, {Detector}), ElementsAre("KeyProcessing at DEBUG"));
    EXPECT_THAT(news({Record, Detector}, {Detector}), IsEmpty());
    EXPECT_THAT(news({Record}, {Bus}), ElementsAre("Input at DEBUG"));
    EXPECT_THAT(news({Report}, {Bus}), IsEmpty());
    EXPECT_THAT(news({Bus}, {Bus}), IsEmpty());
    EXPECT_THAT(news({Bus}, {HandlerTrace}), ElementsAre("BasicInputHandler at TRACE"));
    EXPECT_THAT(news({}, {HandlerTrace}), IsEmpty());
    EXPECT_THAT(news({Bus, Report}, {HandlerTrace}), IsEmpty());
}
