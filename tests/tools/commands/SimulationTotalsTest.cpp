#include "SimulationTotals.h"

#include "ExitStatus.h"

#include <gmock/gmock.h>

#include <string>

using namespace Vorn::Tools;
using namespace Vorn;
using namespace Vorn::Workbench;

namespace {

using Outcome = FileResult::Outcome;
using Ended = SimulationResult::Outcome;
using testing::ElementsAre;

/// A scenario with three expectations.
Scenario threeExpectations()
{
    Scenario scenario;
    const ScenarioStep expect{QString(), 1, QString(), Step::ExpectNothing(), false};
    const ScenarioStep wait{QString(), 1, QString(), Step::Wait{1000}, false};
    scenario.steps = {expect, wait, expect, expect};
    return scenario;
}

FileResult result(Ended ended, int met, const Scenario &scenario = threeExpectations())
{
    SimulationResult simulated;
    simulated.outcome = ended;
    simulated.expectations = met;
    simulated.duration = 1'200;
    return resultOf(QStringLiteral("a.scenario"), scenario, simulated);
}

std::string shown(Ended ended, int met, const Scenario &scenario = threeExpectations())
{
    return summary(result(ended, met, scenario)).toStdString();
}

std::vector<std::string> lines(const QVector<FileResult> &results)
{
    std::vector<std::string> list;
    for (const QString &line : totals(results))
        list.push_back(line.toStdString());
    return list;
}

} // namespace

TEST(SimulationSummary, SaysWhatWasCheckedAndWhatWasNot)
{
    EXPECT_EQ(shown(Ended::Passed, 3), "a.scenario: passed, 3 expectations, 1.200 s");
    EXPECT_EQ(shown(Ended::Failed, 1),
              "a.scenario: FAILED at 1.200 s; 1 expectation met, 1 failed, 1 not checked");
    EXPECT_EQ(shown(Ended::Failed, 2),
              "a.scenario: FAILED at 1.200 s; 2 expectations met, 1 failed");
    EXPECT_EQ(shown(Ended::Malformed, 1),
              "a.scenario: a step could not be run, at 1.200 s; 1 expectation met, 2 not checked");
    EXPECT_EQ(shown(Ended::Interrupted, 0),
              "a.scenario: interrupted at 1.200 s; 0 expectations met, 3 not checked");
    EXPECT_EQ(shown(Ended::Passed, 0, Scenario()),
              "a.scenario: done, no expectations to check, 1.200 s");
}

TEST(SimulationSummary, CountsAnEventThatNobodyExpectedAsAFailure)
{
    EXPECT_EQ(shown(Ended::Failed, 3),
              "a.scenario: FAILED at 1.200 s; 3 expectations met, 1 failed");
}

TEST(SimulationSummary, NeverSucceedsWhereExpectationsWereNotChecked)
{
    for (const Ended ended : {Ended::Failed, Ended::Malformed, Ended::Interrupted}) {
        EXPECT_GT(result(ended, 1).notChecked, 0);
        EXPECT_EQ(statusOf(result(ended, 1).outcome), ended == Ended::Failed ? Found : Failure);
    }
    EXPECT_EQ(statusOf(result(Ended::Passed, 3).outcome), Success);
    EXPECT_EQ(statusOf(result(Ended::Passed, 0, Scenario()).outcome), Success);
    EXPECT_EQ(statusOf(Outcome::NotRun), Failure);
}

TEST(SimulationTotals, AddUpFilesAndExpectations)
{
    EXPECT_THAT(lines({result(Ended::Passed, 3), result(Ended::Passed, 3)}),
                ElementsAre("2 files: 2 passed; 6 expectations met; 2.400 s"));
    EXPECT_THAT(lines({result(Ended::Passed, 3), result(Ended::Failed, 2)}),
                ElementsAre("2 files: 1 passed, 1 failed; 5 expectations met, 1 failed; 2.400 s"));
}

TEST(SimulationTotals, NameEveryKindOfEndInLinesThatFit)
{
    const FileResult broken = resultOf(QStringLiteral("b"), Diagnostics{Diagnostic()});
    FileResult left;
    left.file = QStringLiteral("c");
    EXPECT_THAT(lines({result(Ended::Passed, 3), result(Ended::Passed, 0, Scenario()),
                       result(Ended::Failed, 1), broken, result(Ended::Malformed, 1),
                       result(Ended::Interrupted, 0), left, left}),
                ElementsAre("8 files: 1 passed, 1 without expectations, 1 failed, 1 could not be "
                            "run, 1 with",
                            "an impossible step, 1 interrupted, 2 not run",
                            "    5 expectations met, 1 failed, 6 not checked; 6.000 s"));
}
