#include "Diagnostic.h"
#include "ScenarioLoader.h"
#include "SessionLikeness.h"
#include "Simulation.h"
#include "TakenLog.h"

#include <QDir>

#include <gmock/gmock.h>

#include <algorithm>

using namespace Vorn::Workbench;

namespace {

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
        const TakenLog log;
        simulate(loaded, [&stated](const SessionEntry &entry) { stated.push_back(entry); });
        const auto &steps = loaded.scenario.steps;
        // A log does not tell a clock that was set from time that has passed.
        const bool isClockSet =
            std::any_of(steps.begin(), steps.end(), [](const ScenarioStep &step) {
                return std::holds_alternative<Step::StepClock>(step.what);
            });
        const Times times = isClockSet ? Times::Ignored : Times::Compared;
        const std::vector<std::string> found = differences(stated, log.session(), times);
        EXPECT_TRUE(found.empty()) << file.toStdString() << ":\n" << listed(found);
    }
}
