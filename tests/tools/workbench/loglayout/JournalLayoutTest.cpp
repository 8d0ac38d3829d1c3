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
    for (const char *other :
         {"{", "{}", "[]", R"({"MESSAGE":"x"})", R"({"__REALTIME_TIMESTAMP":"x","MESSAGE":"x"})",
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
}
