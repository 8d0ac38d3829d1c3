#include "LayoutGuess.h"
#include "ProductLog.h"

#include <gmock/gmock.h>

#include <functional>

using namespace Vorn::Workbench;

namespace {

using Lines = std::vector<std::string>;

struct Logged
{
    std::string name;
    /// As a line of the log, without its end.
    std::function<std::string(const ProductMessage &)> line;
    bool hasLogger = true;
    bool hasLevel = true;
    bool hasTime = true;
    std::string text; ///< of the guess, where it is told
};

std::string withoutEnd(const std::string &line)
{
    return line.substr(0, line.find_last_not_of('\n') + 1);
}

Logged byPattern(const std::string &pattern)
{
    const auto has = [&](const char *part) { return pattern.find(part) != std::string::npos; };
    return {pattern,
            [pattern](const ProductMessage &message) {
                return withoutEnd(writtenBy(pattern, message));
            },
            has("c"),
            has("p"),
            has("%d") || has("%D") || has("%r"),
            {}};
}

Logged byTtcc(const std::vector<std::string> &properties, bool hasLogger = true)
{
    std::string name = "TTCCLayout";
    for (const std::string &property : properties)
        name += " " + property;
    return {name,
            [properties](const ProductMessage &message) {
                return withoutEnd(written(*ttccLayout(properties), message));
            },
            hasLogger,
            true,
            true,
            {}};
}

Logged bySimpleLayout()
{
    return {"SimpleLayout",
            [](const ProductMessage &message) {
                log4cplus::SimpleLayout layout;
                return withoutEnd(written(layout, message));
            },
            false,
            true,
            false,
            "pattern '%p - %m%n'"};
}

/// What the journal or syslog writes around a product's lines.
Logged inside(const std::string &around, const std::string &pattern)
{
    return {around + pattern,
            [around, pattern](const ProductMessage &message) {
                return around + withoutEnd(writtenBy(pattern, message));
            },
            pattern.find('c') != std::string::npos,
            pattern.find('p') != std::string::npos,
            true,
            {}};
}

std::vector<Logged> logs()
{
    return {
        byPattern("%-5p %c: %m%n"),
        byPattern("%p %c: %m%n"),
        byPattern("%5p %c - %m%n"),
        byPattern("[%p] [%c] %m%n"),
        byPattern("%p %c : %m%n"),
        byPattern("%p %-20c : %m%n"),
        byPattern("%p [ %c ] %m%n"),
        byPattern("%c | %5p | %m%n"),
        byPattern("%-20.20c| %p| %m%n"),
        byPattern("%D{%H:%M:%S} (%t) %p [%x] %c: %m%n"),
        byPattern("[%-5p] %-20c: %m%n"),
        byPattern("[%5p] %20c %m%n"),
        byPattern("%d %-5p %c: %m%n"),
        byPattern("%D{%Y-%m-%d %H:%M:%S,%q} %-5p %c: %m%n"),
        byPattern("%D{%Y-%m-%d %H:%M:%S.%q} [%t] %-5p %c %x - %m%n"),
        byPattern("%D{%Y-%m-%dT%H:%M:%S.%Q%z} %p %c: %m%n"),
        byPattern("%d{%Y-%m-%dT%H:%M:%SZ} %p %c %m%n"),
        byPattern("[%D{%H:%M:%S.%q}] %p %c: %m%n"),
        byPattern("%D{%H:%M:%S} %p %c: %m%n"),
        byPattern("%D{%d.%m.%Y %H:%M:%S,%q} %p %c: %m%n"),
        byPattern("%D{%Y/%m/%d %H:%M:%S:%q} %p|%c|%m%n"),
        byPattern("%D{%Y%m%d-%H%M%S.%q} %p %c: %m%n"),
        byPattern("%D{%b %d %H:%M:%S.%q} %p %c: %m%n"),
        byPattern("%D{%c} %p %c: %m%n"),
        byPattern("%d{%s.%q} %p %c: %m%n"),
        byPattern("%d{%Y-%m-%d %H:%M:%S.%Q UTC} [%i:%t] %-5p %-18c - %m%n"),
        byPattern("%D %i %t %p %c: %m%n"),
        byPattern("%r %p %c - %m%n"),
        byPattern("%D{%H:%M:%S,%q} %-5p [%c] [%l] %m%n"),
        byPattern("%D{%H:%M:%S,%q} %-5p %c (%F:%L) %m%n"),
        byPattern("%D{%H:%M:%S,%q} %-5p %c %b(%L) [%M] - %m%n"),
        byPattern("%h player %p %c: %m%n"),
        byPattern("%D %-5p: %m%n"),
        byPattern("%c %m%n"),
        byTtcc({}),
        byTtcc({"DateFormat=%H:%M:%S"}),
        byTtcc({"DateFormat=%Y-%m-%d %H:%M:%S.%q"}),
        byTtcc({"ThreadPrinting=false"}),
        byTtcc({"ContextPrinting=false"}),
        byTtcc({"CategoryPrefixing=false"}, false),
        byTtcc({"ThreadPrinting=false", "ContextPrinting=false", "CategoryPrefixing=false"}, false),
        bySimpleLayout(),
        inside("Jan 02 10:00:00 bedroom player[412]: ", "%p - %m%n"),
        inside("Jan  2 10:00:00 bedroom player[412]: ", "%-5p %c: %m%n"),
        inside("<13>Jan  2 10:00:00 bedroom player: ", "%D %-5p %c: %m%n"),
        inside("Jan 02 10:00:00.123456 bedroom player[412]: ", "%-5p %c: %m%n"),
        inside("2026-01-02T10:00:00+0100 bedroom player[412]: ", "%-5p %c: %m%n"),
        inside("2026-01-02T10:00:00.123456+01:00 bedroom player[412]: ", "%m%n"),
        inside("Fri 2026-01-02 10:00:00 UTC bedroom player[412]: ", "%-5p %c: %m%n"),
        inside("1767348000.123456 bedroom player[412]: ", "%-5p %c: %m%n"),
        inside("[   12.345678] bedroom player[412]: ", "%-5p %c: %m%n")};
}

std::vector<std::string> sampleOf(const Logged &log)
{
    std::vector<std::string> lines;
    for (const ProductMessage &message : keyPress())
        lines.push_back(log.line(message));
    return lines;
}

std::vector<std::string> sampleBy(const std::string &pattern)
{
    return sampleOf(byPattern(pattern));
}

std::string guessed(const std::vector<std::string> &sample)
{
    const std::optional<LogLayout> layout = guessLayout(sample);
    return layout ? layout->text().toStdString() : "none";
}

} // namespace

TEST(LayoutGuess, FindsTheLayoutsThatProductsUse)
{
    for (const Logged &log : logs()) {
        const std::vector<std::string> sample = sampleOf(log);
        std::optional<LogLayout> layout = guessLayout(sample);
        ASSERT_TRUE(layout) << log.name << ": " << sample.at(1);
        const std::string text = layout->text().toStdString();
        const std::vector<ProductMessage> messages = keyPress();
        for (std::size_t i = 0; i < sample.size(); ++i) {
            SCOPED_TRACE(log.name + " read by " + text + ": " + sample[i]);
            LogFields fields;
            ASSERT_EQ(layout->parse(sample[i], &fields), LogLayout::Fit::Whole);
            EXPECT_EQ(fields.message, messages[i].message);
            EXPECT_EQ(std::string(fields.logger), log.hasLogger ? messages[i].logger : "");
            EXPECT_EQ(fields.level.has_value(), log.hasLevel);
            EXPECT_TRUE(!fields.level || fields.level == messages[i].level);
            EXPECT_EQ(fields.stamp || fields.sinceStart || fields.uptime, log.hasTime);
        }
        EXPECT_THAT(text, testing::HasSubstr(log.text));
    }
}

TEST(LayoutGuess, TellsThePatternThatWasUsed)
{
    for (const char *pattern :
         {"%-5p %c: %m%n", "%p %c: %m%n", "%5p %c - %m%n", "%D{%Y-%m-%d %H:%M:%S,%q} %-5p %c: %m%n",
          "%r [%t] %p %c <%x> - %m%n", "%D{%H:%M:%S} [%-5p] %-20c: %m%n"})
        EXPECT_EQ(guessed(sampleBy(pattern)), "pattern '" + std::string(pattern) + "'");
}

TEST(LayoutGuess, PrefersThePatternThatFillsLevelsUpAsTheLinesDo)
{
    const std::string debug = "DEBUG Input: Vorn::InputEvent(3) click";
    EXPECT_EQ(guessed({debug, "INFO Input: Vorn::InputEvent(3) click"}), "pattern '%p %c: %m%n'");
    EXPECT_EQ(guessed({debug, "INFO  Input: Vorn::InputEvent(3) click"}),
              "pattern '%-5p %c: %m%n'");
    EXPECT_EQ(guessed({debug, " INFO Input: Vorn::InputEvent(3) click"}), "pattern '%5p %c: %m%n'");
}

TEST(LayoutGuess, ReadsTheProductsOwnLinesThatLookLikeTheJournals)
{
    const std::string date = "Jan 02 10:00:00 ";
    EXPECT_EQ(guessed({date + "DEBUG Input: Vorn::InputEvent(3) click"}),
              "pattern '%D{%b %d %H:%M:%S} %-5p %c: %m%n'");
    const std::string line = date + "main x: Input - Vorn::InputEvent(3) click";
    EXPECT_EQ(guessed({line}), "journal (short), in it the pattern '%c - %m%n'");
    EXPECT_EQ(guessed({line, date + "main two words: player - hello"}),
              "pattern '%D{%b %d %H:%M:%S} %x: %c - %m%n'")
        << "the journal's programs have no blanks in their names";
}

TEST(LayoutGuess, ReadsLevelsThatTheSampleDoesNotHave)
{
    for (const std::string pattern :
         {"%-5p %c: %m%n", "%p %c: %m%n", "%5p %c: %m%n", "%D [%-5p] %c: %m%n", "%D [%p] %c: %m%n",
          "%D [%5p] %c: %m%n", "%D %-5p - %m%n", "%D %p - %m%n", "%D %5p - %m%n"})
    {
        for (const LogLevel seen : {LogLevel::Debug, LogLevel::Info}) {
            const ProductMessage first = {"Input", seen, "Vorn::InputEvent(3) click", 0};
            const std::string sample = withoutEnd(writtenBy(pattern, first));
            std::optional<LogLayout> layout = guessLayout({sample});
            ASSERT_TRUE(layout) << sample;
            for (const LogLevel level : {LogLevel::Debug, LogLevel::Info, LogLevel::Warn}) {
                const ProductMessage message = {"Input", level, "Vorn::InputEvent(4) click", 0};
                const std::string line = withoutEnd(writtenBy(pattern, message));
                SCOPED_TRACE(testing::Message() << layout->text().toStdString() << " after '"
                                                << sample << "': " << line);
                LogFields fields;
                ASSERT_EQ(layout->parse(line, &fields), LogLayout::Fit::Whole);
                EXPECT_EQ(fields.message, message.message);
                EXPECT_EQ(fields.level, level);
            }
        }
    }
}

TEST(LayoutGuess, DoesNotTakeTheBlanksOfALevelForThoseOfALogger)
{
    for (const std::string line :
         {"INFO  Input: Vorn::InputEvent(3) click", "Input    INFO - Vorn::InputEvent(3) click"})
    {
        std::optional<LogLayout> layout = guessLayout({line});
        ASSERT_TRUE(layout) << line;
        LogFields fields;
        ASSERT_EQ(layout->parse(line, &fields), LogLayout::Fit::Whole);
        EXPECT_EQ(fields.logger, "Input") << layout->text().toStdString();
        EXPECT_EQ(fields.level, LogLevel::Info);
    }
    std::optional<LogLayout> layout = guessLayout({"INFO  Input: Vorn::InputEvent(3) click"});
    ASSERT_TRUE(layout);
    LogFields fields;
    ASSERT_EQ(layout->parse("DEBUG KeyProcessing: Stored:()", &fields), LogLayout::Fit::Whole);
    EXPECT_EQ(fields.logger, "KeyProcessing") << layout->text().toStdString();
}

TEST(LayoutGuess, KnowsLoggersThatTheLayoutCut)
{
    for (const std::string pattern : {"%-10.10c %p: %m%n", "%p %.10c: %m%n", "[%.12c] %m%n"}) {
        const std::vector<std::string> sample = sampleBy(pattern);
        std::optional<LogLayout> layout = guessLayout(sample);
        ASSERT_TRUE(layout) << pattern;
        LogFields fields;
        ASSERT_EQ(layout->parse(sample[3], &fields), LogLayout::Fit::Whole) << pattern;
        EXPECT_EQ(fields.logger, "LinuxInputListener") << layout->text().toStdString();
        EXPECT_EQ(fields.message, keyPress()[3].message) << pattern;
    }
}

TEST(LayoutGuess, KnowsTheDayFromTheMonthWhereItCan)
{
    const std::vector<std::string> sample = {
        "11/12/2026 10:00:00 DEBUG LinuxInputListener:  type: 1 code:115 value:1",
        "13/12/2026 10:00:00 DEBUG LinuxInputListener:  type: 1 code:115 value:0"};
    EXPECT_EQ(guessed(sample), "pattern '%D{%d/%m/%Y %H:%M:%S} %-5p %c: %m%n'");
}

TEST(LayoutGuess, SaysWhereItIsOpenWhichNumberIsTheDay)
{
    const auto isOpen = [](const Lines &dates) {
        Lines sample;
        for (const std::string &date : dates)
            sample.push_back(date + " 10:00:00 DEBUG Input: Vorn::InputEvent(3) click");
        const std::optional<LogLayout> layout = guessLayout(sample);
        EXPECT_TRUE(layout);
        return layout && layout->isDayOpen();
    };
    EXPECT_TRUE(isOpen({"02/03/2026"}));
    EXPECT_TRUE(isOpen({"02-03-2026"}));
    EXPECT_TRUE(isOpen({"02/03/26"}));
    EXPECT_FALSE(isOpen({"13/03/2026"}));
    EXPECT_FALSE(isOpen({"13-03-2026"}));
    EXPECT_FALSE(isOpen({"03/13/2026"}));
    EXPECT_FALSE(isOpen({"03-13-2026"}));
    EXPECT_FALSE(isOpen({"2026-03-02"}));
    EXPECT_TRUE(isOpen({"13/03/2026", "03/13/2026"})) << "they contradict each other";
    EXPECT_TRUE(isOpen({"03-13-2026", "13-03-2026"}));
    EXPECT_FALSE(isOpen({"13/03/2026", "03/13/2026", "14/03/2026"}));
}

TEST(LayoutGuess, TakesTheGivenPatternWithAndWithoutWhatIsAroundIt)
{
    LogPattern::Error error;
    const auto given = LogPattern::compile("%c %p %m%n", &error);
    const auto text = [&given](const Lines &sample) {
        const std::optional<LogLayout> layout = guessLayout(sample, given);
        return layout ? layout->text().toStdString() : "none";
    };
    const std::string outer = "Jan 02 10:00:00 bedroom player[1]: ";
    EXPECT_EQ(text({"Input DEBUG x"}), "pattern '%c %p %m%n'");
    EXPECT_EQ(text({outer + "hello", "Input DEBUG x"}), "pattern '%c %p %m%n'");
    EXPECT_EQ(text({outer + "hello", outer + "Input DEBUG x"}),
              "journal (short), in it the pattern '%c %p %m%n'");
    EXPECT_EQ(text({"hello"}), "none");
    const auto own = LogPattern::compile("%D{%b %d %H:%M:%S} %h %p: %m%n", &error);
    const std::optional<LogLayout> layout = guessLayout({"Jan 02 10:00:00 h x[1]: y"}, own);
    EXPECT_FALSE(layout && layout->text().startsWith("pattern"));
    const auto whole = LogPattern::compile("%D{%b %d %H:%M:%S} %h %x: %m [%i]%n", &error);
    const std::optional<LogLayout> alone = guessLayout({"Jan 02 10:00:00 h x: y [1]"}, whole);
    ASSERT_TRUE(alone);
    EXPECT_EQ(alone->text(), "pattern '%D{%b %d %H:%M:%S} %h %x: %m [%i]%n'")
        << "it only looks like the journal's";
}

TEST(LayoutGuess, LooksAtTwentyLinesOfTheLibrary)
{
    const std::string line = "DEBUG Input: Vorn::InputEvent(3) click";
    Lines sample(19, line);
    sample.insert(sample.begin(), 100, "hello");
    Lines others(40, "10:00:00 WARN [x] Input - Vorn::InputEvent(3) click");
    const std::string other = guessed(others);
    EXPECT_NE(other, "pattern '%-5p %c: %m%n'");
    Lines twenty = sample;
    twenty.insert(twenty.end(), others.begin(), others.end());
    EXPECT_EQ(guessed(twenty), other) << "the twentieth shows it, and there are more of them";
    sample.push_back(line);
    sample.insert(sample.end(), others.begin(), others.end());
    EXPECT_EQ(guessed(sample), "pattern '%-5p %c: %m%n'");
}

TEST(LayoutGuess, IgnoresLogsOfSomethingElse)
{
    EXPECT_EQ(guessed({}), "none");
    EXPECT_EQ(guessed({"", "hello", "INFO Foo: bar", "10:00 Input lost", std::string(10, '\0')}),
              "none");
}

TEST(LayoutGuess, PrefersTheGivenPattern)
{
    LogPattern::Error error;
    const auto given = LogPattern::compile("%c %p %m%n", &error);
    const std::optional<LogLayout> layout =
        guessLayout({"Jan 02 10:00:00 bedroom player[1]: Input DEBUG x"}, given);
    ASSERT_TRUE(layout);
    EXPECT_EQ(layout->text(), "journal (short), in it the pattern '%c %p %m%n'");
}
