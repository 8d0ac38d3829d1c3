#include "LogPattern.h"
#include "ProductLog.h"

#include <QRegularExpression>

#include <gmock/gmock.h>

#include <unistd.h>

using namespace Vorn::Workbench;
using testing::HasSubstr;

namespace {

LogPattern compiled(const std::string &text)
{
    LogPattern::Error error;
    const std::optional<LogPattern> pattern =
        LogPattern::compile(QString::fromStdString(text), &error);
    EXPECT_TRUE(pattern) << text << ": " << error.message.toStdString();
    return pattern.value_or(LogPattern());
}

/// "8: no conversion …"
std::string errorOf(const QString &text)
{
    LogPattern::Error error;
    const bool isCompiled = LogPattern::compile(text, &error).has_value();
    return isCompiled ? "none" : std::to_string(error.column) + ": " + error.message.toStdString();
}

/// The conversions without what is inside of dates.
std::string withoutBraces(const std::string &pattern)
{
    return QString::fromStdString(pattern)
        .remove(QRegularExpression(QStringLiteral("\\{[^}]*\\}")))
        .toStdString();
}

std::string withoutEnd(const std::string &line)
{
    return line.substr(0, line.find_last_not_of('\n') + 1);
}

bool fits(const std::string &pattern, std::string_view line)
{
    LogFields fields;
    return compiled(pattern).parse(line, &fields);
}

LogFields parsed(const LogPattern &pattern, std::string_view line)
{
    LogFields fields;
    EXPECT_TRUE(pattern.parse(line, &fields)) << line;
    return fields;
}

} // namespace

class EachPattern : public testing::TestWithParam<const char *>
{ };

TEST_P(EachPattern, IsReadBackAsLog4cplusWroteIt)
{
    const std::string text = GetParam();
    const LogPattern pattern = compiled(text);
    const auto has = [&](const char *conversion) {
        return withoutBraces(text).find(conversion) != std::string::npos;
    };
    const auto states = [&](const char *unit) { return text.find(unit) != std::string::npos; };
    for (const ProductMessage &message : keyPress()) {
        const std::string line = withoutEnd(writtenBy(text, message));
        const LogFields fields = parsed(pattern, line);
        EXPECT_EQ(fields.message, message.message) << line;
        if (has("c")) {
            EXPECT_EQ(fields.logger, message.logger) << line;
        }
        if (has("p")) {
            EXPECT_EQ(fields.level, message.level) << line;
        }
        EXPECT_EQ(fields.stamp.has_value(), has("%d") || has("%D")) << line;
        EXPECT_EQ(fields.sinceStart.has_value(), has("%r")) << line;
        if (states("%q")) {
            EXPECT_EQ(fields.stamp->microseconds % 1'000'000,
                      message.time % 1'000'000 / 1000 * 1000)
                << line;
        }
        if (states("%Q")) {
            EXPECT_EQ(fields.stamp->microseconds % 1'000'000, message.time % 1'000'000) << line;
        }
        if (has("%t")) {
            EXPECT_EQ(fields.thread, productThread) << line;
        }
        if (has("%i")) {
            EXPECT_EQ(fields.pid, std::to_string(getpid())) << line;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    LogPattern, EachPattern,
    testing::Values("%-5p %c: %m%n", "%d %p %c - %m%n", "%D{%Y-%m-%d %H:%M:%S,%q} %-5p %c: %m%n",
                    "%D{%Y-%m-%dT%H:%M:%S.%q%z} [%t] %5p %c %x - %m%n",
                    "%d{%H:%M:%S.%Q}|%p|%c|%m%n", "%d{%s.%q} %i %p %c: %m%n", "%d{%s} %c: %m",
                    "%D{%m/%d/%y %I:%M:%S.%q %p} %c: %m%n", "%D{%c} %p [%c] %m%n",
                    "%D{%a, %d %b %Y %T} %-20c|%-5p|%m%n", "%d{%F %R} %20c %m%n",
                    "%d{%j.%y %k:%M} %c %m%n", "%r [%t] %p %c <%x> - %m%n",
                    "%l %F %b %L [%M] %h %H %E{HOME} %%%p %c: %m%n", "%p %m [%c]%n",
                    "%-20c%-5p%m%n", "%T (%t) (%i) %c{3}: %m%n", "%m%n", "<%p>%c;%m;%n"));

TEST(LogPattern, CompletesLoggersThatTheLayoutCut)
{
    const ProductMessage message = {"LinuxInputListener", LogLevel::Debug, "name: x", 0};
    const std::string line = withoutEnd(writtenBy("%.10c %m%n", message));
    ASSERT_EQ(line, "utListener name: x");
    EXPECT_EQ(parsed(compiled("%.10c %m%n"), line).logger, "LinuxInputListener");
    LogFields fields;
    EXPECT_FALSE(compiled("%.10c %m%n").parse("LinuxInputListener name: x", &fields))
        << "longer than the layout allows";
}

TEST(LogPattern, KnowsLevelsThatTheLayoutCut)
{
    const LogPattern pattern = compiled("%.1p %c: %m%n");
    for (const ProductMessage &message : keyPress()) {
        const std::string line = withoutEnd(writtenBy("%.1p %c: %m%n", message));
        EXPECT_EQ(parsed(pattern, line).level, message.level) << line;
    }
}

TEST(LogPattern, KeepsTheBlankInFrontOfAMessage)
{
    EXPECT_EQ(parsed(compiled("%-5p %c: %m%n"), "INFO  Input:  type: 1").message, " type: 1");
    EXPECT_EQ(parsed(compiled("%p - %m%n"), "INFO -  type: 1").message, " type: 1");
}

TEST(LogPattern, TakesAMessageToTheLastPlaceThatFits)
{
    const LogFields fields = parsed(compiled("%p %m [%c]%n"), "WARN a [b] c [Input]");
    EXPECT_EQ(fields.message, "a [b] c");
    EXPECT_EQ(fields.logger, "Input");
}

TEST(LogPattern, RefusesOtherLines)
{
    const LogPattern pattern = compiled("%d{%H:%M:%S} %-5p [%i] %c: %m%n");
    LogFields fields;
    for (const char *line :
         {"", "x", "10:00:00 DEBUG [1] Input", "25:00:00 DEBUG [1] Input: m",
          "10:00:00 DEBUX [1] Input: m", "10:00:00 DEBUG [x] Input: m", "10:00:00"})
        EXPECT_FALSE(pattern.parse(line, &fields)) << line;
}

TEST(LogPattern, TakesTimesFromBeforeTheStart)
{
    EXPECT_EQ(parsed(compiled("%r %m%n"), "-27 x").sinceStart, -27'000);
    EXPECT_FALSE(fits("%i %m", "-27 x"));
    EXPECT_FALSE(fits("%L %m", "-27 x"));
    EXPECT_FALSE(fits("%r %m", "- x"));
    EXPECT_FALSE(fits("%r %m", "+27 x"));
}

TEST(LogPattern, NumbersHaveDigits)
{
    EXPECT_EQ(parsed(compiled("%i %m"), "0 x").pid, "0");
    EXPECT_EQ(parsed(compiled("%i %m"), "9 x").pid, "9");
    EXPECT_FALSE(fits("%i %m", " x"));
    EXPECT_FALSE(fits("%i %m", "/ x"));
    EXPECT_FALSE(fits("%i %m", ": x"));
    EXPECT_FALSE(fits("%L %m", " x"));
    EXPECT_EQ(parsed(compiled("%r %m"), "999999999999999 x").sinceStart, 999'999'999'999'999'000);
    EXPECT_EQ(parsed(compiled("%r %m"), "-999999999999999 x").sinceStart, -999'999'999'999'999'000);
    EXPECT_FALSE(fits("%r %m", "1000000000000000 x")) << "no product runs for so long";
}

TEST(LogPattern, ReadsWhatTheLayoutFillsUp)
{
    EXPECT_EQ(parsed(compiled("%5i|%m"), "   12|x").pid, "12");
    EXPECT_EQ(parsed(compiled("%-5i|%m"), "12   |x").pid, "12");
    EXPECT_FALSE(fits("%-5i|%m", "   12|x"));
    EXPECT_FALSE(fits("%i|%m", " 12|x"));
    EXPECT_EQ(parsed(compiled("%6r|%m"), "   -12|x").sinceStart, -12'000);
    EXPECT_TRUE(parsed(compiled("%12d{%H:%M:%S}|%m"), "    10:00:00|x").stamp);
    EXPECT_TRUE(parsed(compiled("%-12d{%H:%M:%S}|%m"), "10:00:00    |x").stamp);
    EXPECT_FALSE(fits("%-12d{%H:%M:%S}|%m", "    10:00:00|x"));
    EXPECT_FALSE(fits("%d{%H:%M:%S}|%m", " 10:00:00|x"));
    EXPECT_EQ(parsed(compiled("%8c|%m"), "   Input|x").logger, "Input");
    EXPECT_EQ(parsed(compiled("%-8c|%m"), "Input   |x").logger, "Input");
    EXPECT_EQ(parsed(compiled("%8c|%m"), "Input   |x").logger, "Input   ");
    EXPECT_EQ(parsed(compiled("%8c|%m"), "    Input|x").logger, "    Input") << "longer";
    EXPECT_EQ(parsed(compiled("%8c|%m"), "        |x").logger, "");
    EXPECT_FALSE(fits("%8c|%m", "Input|x")) << "shorter";
    EXPECT_EQ(parsed(compiled("%8t%m"), "    mainx").thread, "main");
    EXPECT_EQ(parsed(compiled("%8t%m"), "    main").message, "");
    EXPECT_FALSE(fits("%8t%m", "   main"));
    EXPECT_EQ(parsed(compiled("%m|%-8t"), "x|main").thread, "main") << "the last one";
    EXPECT_EQ(parsed(compiled("%m|%t"), "x|").thread, "");
    EXPECT_EQ(parsed(compiled("%-6m|"), "x     |").message, "x");
    EXPECT_EQ(parsed(compiled("%6m"), "     x").message, "x");
}

TEST(LogPattern, SaysWhichLevelsAreFilledUpOtherwise)
{
    const auto isUneven = [](const char *pattern, std::string_view line) {
        const LogFields fields = parsed(compiled(pattern), line);
        EXPECT_EQ(fields.level, LogLevel::Info) << line;
        EXPECT_EQ(fields.message, "x") << line;
        return fields.isUnevenlyFilled;
    };
    EXPECT_FALSE(isUneven("%-5p|%m", "INFO |x"));
    EXPECT_TRUE(isUneven("%-5p|%m", " INFO|x"));
    EXPECT_TRUE(isUneven("%-5p|%m", "INFO|x"));
    EXPECT_FALSE(isUneven("%5p|%m", " INFO|x"));
    EXPECT_FALSE(isUneven("%5p|%m", "INFO|x"));
    EXPECT_FALSE(isUneven("%p|%m", "INFO|x"));
    EXPECT_FALSE(fits("%p|%m", " INFO|x"));
    EXPECT_FALSE(fits("%-5p|%m", "INFO  |x"));
    EXPECT_FALSE(fits("%5p|%m", ""));
}

TEST(LogPattern, TakesTheLibrarysMessageToTheLastPlaceThatFits)
{
    EXPECT_EQ(parsed(compiled("%m|%p"), "a|b|INFO").message, "a|b");
    EXPECT_EQ(parsed(compiled("%m|%p"), "a|INFO|INFO").message, "a|INFO");
    EXPECT_EQ(parsed(compiled("%m|%p"), "|INFO").message, "");
    EXPECT_FALSE(fits("%m|%p", "|INF"));
    EXPECT_FALSE(fits("%m|%p", "a"));
    EXPECT_FALSE(fits("%m|%p", ""));
    EXPECT_EQ(parsed(compiled("%p %m;"), "INFO a;b;").message, "a;b");
    EXPECT_FALSE(fits("%p %m;", "INFO a"));
}

TEST(LogPattern, TakesATextToTheFirstPlaceThatFits)
{
    EXPECT_EQ(parsed(compiled("%t %p %m"), "worker 1 of 2 INFO x").thread, "worker 1 of 2");
    EXPECT_EQ(parsed(compiled("%t %p %m"), "worker INFO INFO x").thread, "worker");
    EXPECT_EQ(parsed(compiled("[%t] %p %m"), "[a] b] INFO x").thread, "a] b");
    EXPECT_FALSE(fits("%t %p %m", "worker 1 of 2"));
}

TEST(LogPattern, PrefersTheThreadsNameToItsNumber)
{
    EXPECT_EQ(parsed(compiled("%t %T %m"), "main 4711 x").thread, "main");
    EXPECT_EQ(parsed(compiled("%T %t %m"), "4711 main x").thread, "main");
    EXPECT_EQ(parsed(compiled("%T %m"), "4711 x").thread, "4711");
}

TEST(LogPattern, KnowsWhatItsLinesHave)
{
    EXPECT_TRUE(compiled("%c %m").hasLogger());
    EXPECT_FALSE(compiled("c %m").hasLogger());
    EXPECT_TRUE(compiled("%d %m").hasTime());
    EXPECT_TRUE(compiled("%D %m").hasTime());
    EXPECT_TRUE(compiled("%r %m").hasTime());
    EXPECT_FALSE(compiled("%c %m").hasTime());
    EXPECT_EQ(compiled("%c %m").text(), "%c %m");
}

TEST(LogPattern, TakesTextsOfAKilobyte)
{
    const std::string context(1000, 'x');
    EXPECT_TRUE(fits("%x|%m", context + "|m"));
    EXPECT_FALSE(fits("%x|%m", context + context + "|m"));
}

TEST(LogPattern, SaysWhereItIsWrong)
{
    EXPECT_EQ(errorOf("%p %y %m%n"), "4: log4cplus has no conversion '%y'");
    EXPECT_THAT(errorOf("ä%D{%H %m%n"), "4: '{' without its '}'");
    EXPECT_THAT(errorOf("%d{%H:%U} %m"), "7: '%U' of a time cannot be read back");
    EXPECT_THAT(errorOf("%d{%H:%} %m"), HasSubstr("7: a time ends with '%'"));
    EXPECT_THAT(errorOf("%.p %m"), "2: the greatest width is missing behind '.'");
    EXPECT_THAT(errorOf("%-99999p %m"), HasSubstr("3: a width above 1000"));
    EXPECT_THAT(errorOf("%m %"), HasSubstr("4: a conversion without its letter"));
    EXPECT_THAT(errorOf("%p %c"), HasSubstr("1: no '%m'"));
    EXPECT_THAT(errorOf("%m%n%m"), HasSubstr("3: '%n' before the end"));
    EXPECT_THAT(errorOf("%m %m"), HasSubstr("4: '%m' for the second time"));
    EXPECT_EQ(errorOf("%c%m"), "3: nothing tells where '%c' ends and '%m' begins");
    EXPECT_EQ(errorOf("%20c%m"), "none");
}

TEST(LogPattern, HasTheConversionsOfLog4cplus)
{
    for (const char conversion : std::string("bcdDEFhHiIlLMmnprTtxX%")) {
        const bool isKnown = conversion != 'I';
        const std::string pattern = std::string("%") + conversion + " %m";
        const std::string error = errorOf(QString::fromStdString(pattern));
        if (conversion == 'm')
            EXPECT_EQ(error, "4: '%m' for the second time");
        else if (conversion == 'n')
            EXPECT_EQ(error,
                      "1: '%n' before the end: one message would be several lines, which cannot be "
                      "read");
        else
            EXPECT_EQ(error == "none", isKnown) << pattern << ": " << error;
    }
    EXPECT_EQ(errorOf("%ä %m"), "1: log4cplus has no conversion '%'");
    EXPECT_EQ(errorOf("%a %m"), "1: log4cplus has no conversion '%a'");
    EXPECT_EQ(errorOf("%: %m"), "1: log4cplus has no conversion '%:'");
    EXPECT_EQ(errorOf("%c{2} %E{HOME} %X{x} %m"), "none");
    EXPECT_EQ(errorOf("%E{HOME %m"), "3: '{' without its '}'");
    EXPECT_EQ(errorOf(""), "1: no '%m': without its messages a log says nothing");
    EXPECT_EQ(errorOf("%"), "1: a conversion without its letter; write '%%' for a percent sign");
    EXPECT_EQ(errorOf("%-"), "1: a conversion without its letter; write '%%' for a percent sign");
    EXPECT_EQ(errorOf("%5"), "1: a conversion without its letter; write '%%' for a percent sign");
}

TEST(LogPattern, HasWidthsUpToAThousand)
{
    EXPECT_EQ(errorOf("%1000c|%m"), "none");
    EXPECT_EQ(errorOf("%1001c|%m"), "2: a width above 1000");
    EXPECT_EQ(errorOf("%.1000c|%m"), "none");
    EXPECT_EQ(errorOf("%5.1001c|%m"), "4: a width above 1000");
    EXPECT_EQ(errorOf("%5.c|%m"), "3: the greatest width is missing behind '.'");
    EXPECT_EQ(errorOf("%0c|%m"), "none");
    EXPECT_EQ(errorOf("%:c|%m"), "1: log4cplus has no conversion '%:'");
    EXPECT_EQ(errorOf("%/c|%m"), "1: log4cplus has no conversion '%/'");
}

TEST(LogPattern, SeparatesWhatDoesNotEndByItself)
{
    for (const char *pattern : {"%d%m", "%p%m", "%i%m", "%r%m", "%L%m", "%p%i%c %m", "%5t%m",
                                "%c|%m", "%m|%c", "%m%n", "%p%m%n"})
        EXPECT_EQ(errorOf(pattern), "none") << pattern;
    for (const char *pattern : {"%c%m", "%t%m", "%x%m", "%F%m", "%M%m", "%.5t%m", "%m%c", "%5m%c"})
        EXPECT_THAT(errorOf(pattern), HasSubstr(": nothing tells where")) << pattern;
    EXPECT_EQ(errorOf("%p %t%c %m"), "6: nothing tells where '%t' ends and '%c' begins");
}

TEST(LogPattern, IsQuickWithLinesMadeToFitInManyWays)
{
    const LogPattern pattern = compiled("%x %x %x %x %x %x %x %x %p%m%n");
    const std::string line(200'000, ' ');
    LogFields fields;
    EXPECT_FALSE(pattern.parse(line, &fields));
}
