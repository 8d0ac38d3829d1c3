#include "LogSessions.h"

#include "Diagnostic.h"
#include "ScenarioLoader.h"
#include "SessionLikeness.h"
#include "Simulation.h"
#include "TakenLog.h"

#include <QDir>

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

std::vector<SessionEntry> sessionOf(const std::vector<LogLine> &lines)
{
    std::vector<SessionEntry> entries;
    LogSessions sessions(QStringLiteral("player.log"),
                         [&entries](const SessionEntry &entry) { entries.push_back(entry); });
    for (const LogLine &line : lines)
        sessions.add(line);
    sessions.finish();
    return entries;
}

std::string listed(const std::vector<std::string> &texts)
{
    std::string list;
    for (const std::string &text : texts)
        list.append(text).append("\n");
    return list;
}

} // namespace

TEST(LogRoundTrip, EachScenarioIsReadBackFromItsLog)
{
    const QDir folder(QStringLiteral(VORN_SOURCE_DIR "/tests/scenarios"));
    const QStringList files = folder.entryList({QStringLiteral("*.scenario")}, QDir::Files);
    ASSERT_GT(files.size(), 20);
    for (const QString &file : files) {
        const LoadedScenario loaded = loadScenario(folder.filePath(file), {});
        ASSERT_FALSE(hasErrors(loaded.diagnostics)) << file.toStdString();
        std::vector<SessionEntry> stated;
        std::vector<LogLine> lines;
        {
            const TakenLog log;
            simulate(loaded, [&stated](const SessionEntry &entry) { stated.push_back(entry); });
            lines = log.lines();
        }
        ASSERT_FALSE(lines.empty()) << file.toStdString();
        // A log does not tell a clock that was set from time that has passed.
        const Times times = file == "clock-steps.scenario" ? Times::Ignored : Times::Compared;
        const std::vector<std::string> found = differences(stated, sessionOf(lines), times);
        EXPECT_TRUE(found.empty()) << file.toStdString() << ":\n" << listed(found);
    }
}
