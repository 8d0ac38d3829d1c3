#include "DrivenScenario.h"

#include "AnsweringProgram.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <dlfcn.h>

using namespace AnsweringProgram;
using namespace Vorn::Drive;
using Outcome = SimulationResult::Outcome;

namespace {

class DrivenScenarioTest : public testing::Test
{
protected:
    /// The product answers everything until it is to quit, and then does what @p end says. Each
    /// answer is a second later.
    DriveResult driven(const QString &end)
    {
        return drivenBy("IFS= read -r line <&$VORN_DRIVE_SOCKET\n"
                        "printf %s \"$1\" >&$VORN_DRIVE_SOCKET\n"
                        "while IFS= read -r line; do printf \"$2\" $((time += 1000000)); done "
                        "<&$VORN_DRIVE_SOCKET >&$VORN_DRIVE_SOCKET\n"
                        + end);
    }

    DriveResult drivenBy(const QString &text)
    {
        Answer hello;
        hello.folder = m_folder.filePath(QStringLiteral("vorn-sim-1/dev"));
        QDir(m_folder.path()).mkpath(QStringLiteral("vorn-sim-1/dev/input"));
        LoadedScenario loaded;
        loaded.scenario.file = QStringLiteral("a.scenario");
        loaded.scenario.lastLine = 7;
        loaded.scenario.steps.append(
            {QStringLiteral("a.scenario"), 1, QStringLiteral("wait"), Step::Wait{10'000}, false});
        DriveSettings settings;
        settings.command =
            script(text, {toLine(hello), doneAt(123'456).replace("123456000", "%d")}).command;
        settings.agent = library();
        settings.virtualTime = true;
        settings.passesOutput = false;
        settings.timeout = patienceMs;
        return driveScenario(loaded, settings, [this](const SessionEntry &) { ++m_entries; });
    }

    bool hasFolder() const { return QDir(m_folder.path()).exists(QStringLiteral("vorn-sim-1")); }

    /// One that every program has anyway, in place of the agent.
    static QString library()
    {
        Dl_info info = {};
        dladdr(reinterpret_cast<void *>(&dladdr), &info);
        return QString::fromLocal8Bit(info.dli_fname);
    }

    const QTemporaryDir m_folder;
    int m_entries = 0;
};

} // namespace

TEST_F(DrivenScenarioTest, IsRunOnAProgramThatQuitsWhenAsked)
{
    const DriveResult result = driven("echo bye");
    EXPECT_EQ(result.obstacle.toStdString(), "");
    EXPECT_EQ(result.run.outcome, Outcome::Passed);
    EXPECT_GE(result.run.duration, 10'000);
    EXPECT_EQ(result.note.toStdString(), "");
    EXPECT_EQ(result.output, QStringList({"bye"}));
    EXPECT_GT(m_entries, 0);
    EXPECT_FALSE(hasFolder()) << "nothing is left of a program that leaves it behind";
}

TEST_F(DrivenScenarioTest, NotesAnotherStatusThanZero)
{
    const DriveResult result = driven("exit 3");
    EXPECT_EQ(result.run.outcome, Outcome::Passed);
    EXPECT_EQ(result.note.toStdString(),
              "the program exited with status 3 at the end of the scenario");
}

TEST_F(DrivenScenarioTest, FailsWhereTheProgramCrashesWhenAskedToQuit)
{
    const DriveResult result = driven("kill -SEGV $$");
    EXPECT_EQ(result.run.outcome, Outcome::ProgramFailed);
    EXPECT_EQ(result.note.toStdString(), "");
    ASSERT_EQ(result.run.diagnostics.size(), 1);
    EXPECT_EQ(result.run.diagnostics.first().toString().toStdString(),
              "a.scenario:7: error: the program was killed by SIGSEGV (Segmentation fault) when it "
              "was asked to quit");
}

TEST_F(DrivenScenarioTest, TellsWhyAProgramCannotBeDriven)
{
    const DriveResult ended = drivenBy("echo no; exit 3");
    EXPECT_EQ(ended.obstacle.toStdString(),
              "the program exited with status 3 before it could be driven");
    EXPECT_EQ(ended.output, QStringList({"no"}));
    EXPECT_EQ(ended.note.toStdString(), "");
    EXPECT_TRUE(hasFolder()) << "nobody has said that it is the program's";

    DriveSettings settings;
    settings.agent = library();
    settings.command = QStringList{"/nowhere/product"};
    EXPECT_EQ(driveScenario({}, settings, [](const SessionEntry &) {}).obstacle.toStdString(),
              "/nowhere/product cannot be started: No such file or directory");
}

TEST_F(DrivenScenarioTest, FailsWhereTheProgramEndsInBetween)
{
    const DriveResult result = drivenBy("for answer in \"$1\" \"$2\"; do\n"
                                        "  IFS= read -r line <&$VORN_DRIVE_SOCKET\n"
                                        "  printf \"$answer\" 5 >&$VORN_DRIVE_SOCKET\n"
                                        "done\nexit 5");
    EXPECT_EQ(result.run.outcome, Outcome::ProgramFailed);
    EXPECT_EQ(result.obstacle.toStdString(), "");
    EXPECT_EQ(result.note.toStdString(), "");
    ASSERT_FALSE(result.run.diagnostics.isEmpty());
    EXPECT_THAT(result.run.diagnostics.first().message.toStdString(),
                testing::HasSubstr("the program exited with status 5"));
}

TEST_F(DrivenScenarioTest, RemovesNoFolderOfAnotherName)
{
    QDir(m_folder.path()).mkpath(QStringLiteral("mine/dev"));
    Answer hello;
    hello.folder = m_folder.filePath(QStringLiteral("mine/dev"));
    DriveSettings settings;
    settings.command =
        script("IFS= read -r line <&$VORN_DRIVE_SOCKET; printf %s \"$1\" >&$VORN_DRIVE_SOCKET",
               {toLine(hello)})
            .command;
    settings.agent = library();
    settings.virtualTime = true;
    EXPECT_EQ(driveScenario({}, settings, [](const SessionEntry &) {}).obstacle.toStdString(),
              "the program exited with status 0 before it could be driven");
    EXPECT_TRUE(QDir(m_folder.path()).exists(QStringLiteral("mine/dev")));
}
