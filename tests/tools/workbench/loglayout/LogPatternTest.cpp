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

TEST(LogPattern, IsQuickWithLinesMadeToFitInManyWays)
{
    const LogPattern pattern = compiled("%x %x %x %x %x %x %x %x %p%m%n");
    const std::string line(200'000, ' ');
    LogFields fields;
    EXPECT_FALSE(pattern.parse(line, &fields));
}
