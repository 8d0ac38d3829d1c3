#include "JournalLayout.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

struct Read
{
    std::string layout = "none";
    std::string unit;
    std::string pid;
    std::string message;
    qint64 lost = 0;
    std::optional<qint64> time;
    std::optional<qint64> uptime;
};

Read read(std::string_view line)
{
    std::optional<JournalLayout> layout = JournalLayout::of(line);
    LogFields fields;
    if (!layout || !layout->parse(line, &fields))
        return {};
    return {layout->name().toStdString(),
            std::string(fields.unit),
            std::string(fields.pid),
            std::string(fields.message),
            fields.lost,
            fields.stamp ? std::optional(fields.stamp->microseconds) : std::nullopt,
            fields.uptime};
}

std::string layoutOf(std::string_view line)
{
    return read(line).layout;
}

} // namespace

TEST(JournalLayout, TakesSyslogsFormApart)
{
    const Read line = read("Jan  2 10:00:01 bedroom player[412]: INFO - x: y");
    EXPECT_EQ(line.layout, "syslog");
    EXPECT_EQ(line.unit, "player[412]");
    EXPECT_EQ(line.pid, "412");
    EXPECT_EQ(line.message, "INFO - x: y");
    EXPECT_EQ(line.time, 36'001'000'000);
    EXPECT_EQ(read("<13>Jan  2 10:00:01 bedroom kernel: x").unit, "kernel");
    EXPECT_EQ(read("Jan  2 10:00:01 bedroom player[412]:  type: 1").message, " type: 1");
}

TEST(JournalLayout, DropsThePriorityThatTravelsWithALine)
{
    const std::string line = "Jan  2 10:00:01 h player: x";
    for (const char *priority : {"", "<0>", "<13>", "<191>"})
        EXPECT_EQ(layoutOf(priority + line), "syslog") << priority;
    for (const char *other :
         {"<>", "<1913>", "<13", "13>", "113>", "<1a>", "<13> ", "[13>", "<", "<13]", " "})
        EXPECT_EQ(layoutOf(other + line), "none") << other;
    EXPECT_EQ(layoutOf("<13>"), "none");
    EXPECT_EQ(layoutOf("<13"), "none");
}

TEST(JournalLayout, TakesUnitsAndTheirProcessesApart)
{
    const auto parts = [](const std::string &rest) {
        const Read line = read("Jan  2 10:00:01 h " + rest);
        return line.layout == "none" ? line.layout
                                     : line.unit + "|" + line.pid + "|" + line.message;
    };
    EXPECT_EQ(parts("player[412]: x: y"), "player[412]|412|x: y");
    EXPECT_EQ(parts("player[0]: x"), "player[0]|0|x");
    EXPECT_EQ(parts("player[9]: x"), "player[9]|9|x");
    EXPECT_EQ(parts("player[]: x"), "player[]||x");
    EXPECT_EQ(parts("player[4a]: x"), "player[4a]||x");
    EXPECT_EQ(parts("player[4/]: x"), "player[4/]||x");
    EXPECT_EQ(parts("player[1:]: x"), "player[1:]||x");
    EXPECT_EQ(parts("a[1]b: x"), "a[1]b||x");
    EXPECT_EQ(parts("a[1b: x"), "a[1b||x");
    EXPECT_EQ(parts("player1]: x"), "player1]||x");
    EXPECT_EQ(parts("a[1][2]: x"), "a[1][2]|2|x");
    EXPECT_EQ(parts("kernel: "), "kernel||");
    EXPECT_EQ(parts("kernel:x"), "none");
    EXPECT_EQ(parts(": x"), "none");
    EXPECT_EQ(parts("DEBUG: x"), "none");
    EXPECT_EQ(parts("Input: x"), "none");
    EXPECT_EQ(parts(std::string(256, 'u') + ": x"), std::string(256, 'u') + "||x");
    EXPECT_EQ(parts(std::string(257, 'u') + ": x"), "none");
    EXPECT_EQ(layoutOf("Jan  2 10:00:01  player: x"), "none") << "a host has a name";
    EXPECT_EQ(layoutOf("Jan  2 10:00:01|h player: x"), "none");
    EXPECT_EQ(layoutOf("Jan  2 10:00:01\th player: x"), "none");
    EXPECT_EQ(layoutOf("Jan  2 10:00:01~h player: x"), "none");
    EXPECT_EQ(layoutOf("Jan  2 10:00:01 DEBUG player: x"), "none");
}

TEST(JournalLayout, ReadsTheTimeSinceTheSystemStarted)
{
    const auto uptime = [](const std::string &time) {
        return read(time + " h player[1]: x").uptime.value_or(-1);
    };
    EXPECT_EQ(uptime("[    0.000001]"), 1);
    EXPECT_EQ(uptime("[12.345678]"), 12'345'678);
    EXPECT_EQ(uptime("[123456789012.345678]"), -1) << "too long";
    EXPECT_EQ(uptime("[4294967295.999999]"), 4'294'967'295'999'999);
    EXPECT_EQ(uptime("[ 4294967295.999999]"), 4'294'967'295'999'999);
    EXPECT_EQ(uptime("[  4294967295.999999]"), 4'294'967'295'999'999);
    EXPECT_EQ(uptime("[   4294967295.999999]"), -1);
    EXPECT_EQ(uptime("[12.34567]"), -1);
    EXPECT_EQ(uptime("[12.3456789]"), -1);
    EXPECT_EQ(uptime("[12]"), -1);
    EXPECT_EQ(uptime("[]"), -1);
    EXPECT_EQ(uptime("[       ]"), -1);
    EXPECT_EQ(uptime("[.345678]"), -1);
    EXPECT_EQ(uptime("[x.345678]"), -1);
    EXPECT_EQ(uptime("[12.34567x]"), -1);
    EXPECT_EQ(uptime("(12.345678]"), -1);
    EXPECT_EQ(uptime("X12.345678]"), -1);
    EXPECT_EQ(uptime("{12.345678]"), -1);
    EXPECT_EQ(uptime("12.345678]"), -1);
    EXPECT_EQ(layoutOf("[12.345678]"), "none");
    EXPECT_EQ(layoutOf("[12.345678"), "none");
}

TEST(JournalLayout, KnowsWhatJournalctlWrites)
{
    EXPECT_EQ(layoutOf("Jan 02 10:00:01 h player[1]: x"), "journal (short)");
    EXPECT_EQ(layoutOf("Jan 02 10:00:01.123456 h player[1]: x"), "journal (short-precise)");
    EXPECT_EQ(layoutOf("2026-01-02T10:00:01+0100 h player[1]: x"), "journal (short-iso)");
    EXPECT_EQ(layoutOf("2026-01-02T10:00:01+01:00 h player[1]: x"), "journal (short-iso)");
    EXPECT_EQ(layoutOf("2026-01-02T10:00:01.123456+0100 h player[1]: x"),
              "journal (short-iso-precise)");
    EXPECT_EQ(layoutOf("Fri 2026-01-02 10:00:01 CET h player[1]: x"), "journal (short-full)");
    EXPECT_EQ(layoutOf("1767348001.123456 h player[1]: x"), "journal (short-unix)");
    const Read monotonic = read("[   12.345678] h player[1]: x");
    EXPECT_EQ(monotonic.layout, "journal (short-monotonic)");
    EXPECT_EQ(monotonic.uptime, 12'345'678);
}

TEST(JournalLayout, ReadsJson)
{
    const Read line = read(R"({"__REALTIME_TIMESTAMP":"1767348001123456",)"
                           R"("__MONOTONIC_TIMESTAMP":"12345678","_PID":"412",)"
                           R"("SYSLOG_IDENTIFIER":"player","MESSAGE":"INFO - \u00e4 \"x\""})");
    EXPECT_EQ(line.layout, "journal (JSON)");
    EXPECT_EQ(line.time, 1'767'348'001'123'456);
    EXPECT_EQ(line.uptime, 12'345'678);
    EXPECT_EQ(line.unit, "player[412]");
    EXPECT_EQ(line.message, "INFO - ä \"x\"");
    EXPECT_EQ(read(R"({"__REALTIME_TIMESTAMP":"1","_COMM":"a","MESSAGE":[97,255,98]})").message,
              "a\xff"
              "b");
    EXPECT_EQ(read(R"({"__REALTIME_TIMESTAMP":"1","MESSAGE":null})").message, "");
    EXPECT_EQ(read(R"({"__REALTIME_TIMESTAMP":"0","_COMM":"a"})").unit, "a");
    EXPECT_EQ(read(R"({"__REALTIME_TIMESTAMP":"0","_SYSTEMD_UNIT":"b","_COMM":""})").unit, "b");
    EXPECT_EQ(read(R"({"__REALTIME_TIMESTAMP":"0","_COMM":"a","SYSLOG_PID":"7"})").unit, "a[7]");
    EXPECT_EQ(read(R"({"__REALTIME_TIMESTAMP":"0","_PID":"8","SYSLOG_PID":"7"})").unit, "[8]");
    EXPECT_EQ(read(R"({"__REALTIME_TIMESTAMP":"4449513599999999"})").time, 4'449'513'599'999'999);
    EXPECT_EQ(read(R"({"__REALTIME_TIMESTAMP":"1","__MONOTONIC_TIMESTAMP":"x"})").uptime,
              std::nullopt);
    for (const char *other :
         {R"({"__REALTIME_TIMESTAMP":"4449513600000000"})", R"( {"__REALTIME_TIMESTAMP":"1"})",
          R"([{"__REALTIME_TIMESTAMP":"1"}])", "{", "{}", "[]", R"({"MESSAGE":"x"})",
          R"({"__REALTIME_TIMESTAMP":"x","MESSAGE":"x"})",
          R"({"__REALTIME_TIMESTAMP":"-1","MESSAGE":"x"})",
          R"({"__REALTIME_TIMESTAMP":"9223372036854775807","MESSAGE":"x"})"})
        EXPECT_EQ(layoutOf(other), "none") << other;
}

TEST(JournalLayout, LeavesAProductsOwnLayoutsAlone)
{
    for (const char *line :
         {"Jan 02 10:00:01 DEBUG Input: x", "2026-01-02T10:00:01Z WARN LinuxInputListener: x",
          "Jan 02 10:00:01 h Input: x", "Jan 02 10:00:01 h", "Jan 02 10:00:01", "", "[1.2] x: y",
          "Jan 02 10:00:01 h a b: x"})
        EXPECT_EQ(layoutOf(line), "none") << line;
}

TEST(JournalLayout, CountsWhatTheServicesDropped)
{
    EXPECT_EQ(read("Jan 02 10:00:01 h systemd-journald[99]: Suppressed 345 messages from x").lost,
              345);
    EXPECT_EQ(read("Jan 02 10:00:01 h rsyslogd[1]: imuxsock lost 12 messages from pid 3 due to "
                   "rate-limiting")
                  .lost,
              12);
    EXPECT_EQ(
        read("Jan 02 10:00:01 h rsyslogd: imjournal: 7 messages lost due to rate-limiting").lost,
        7);
    EXPECT_EQ(read("Jan 02 10:00:01 h player[1]: Suppressed 345 messages from x").lost, 0)
        << "only the service knows";
    EXPECT_EQ(read("Jan 02 10:00:01 h player[1]: [22B blob data]").lost, 1);
    EXPECT_EQ(read("Jan 02 10:00:01 h player[1]: [1.5K blob data]").lost, 1);
    EXPECT_EQ(read("Jan 02 10:00:01 h player[1]: [my blob data]").lost, 0);
    for (const char *other : {"[ blob data]", " blob data]", "22B blob data]", "[22B blob data",
                              "[22B blob data] ", "[2B2 blob datax", "x[22B blob data]"})
        EXPECT_EQ(read(std::string("Jan 02 10:00:01 h player[1]: ") + other).lost,
                  std::string(other) == "[ blob data]" ? 1 : 0)
            << other;
    EXPECT_EQ(read("Jan 02 10:00:01 h systemd-journal[9]: Suppressed messages").lost, 0);
    EXPECT_EQ(read("Jan 02 10:00:01 h systemd-journal[9]: Suppressed 5").lost, 5);
    EXPECT_EQ(read("Jan 02 10:00:01 h systemd-journa: Suppressed 5").lost, 0);
    EXPECT_EQ(read("Jan 02 10:00:01 h rsyslogd: 7 messages lost due to rate-limiting").lost, 7);
    EXPECT_EQ(read("Jan 02 10:00:01 h rsyslogd: messages lost due to rate-limiting").lost, 0);
    EXPECT_EQ(read("Jan 02 10:00:01 h rsyslog: imuxsock lost 12 messages").lost, 0);
    EXPECT_EQ(read(R"({"__REALTIME_TIMESTAMP":"1","_COMM":"a","MESSAGE":"[22B blob data]"})").lost,
              0)
        << "JSON shows all bytes";
    EXPECT_EQ(read(R"({"__REALTIME_TIMESTAMP":"1","SYSLOG_IDENTIFIER":"systemd-journald",)"
                   R"("MESSAGE":"Suppressed 3 messages"})")
                  .lost,
              3);
}
