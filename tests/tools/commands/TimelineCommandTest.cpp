#include "TimelineCommand.h"

#include "ExitStatus.h"
#include "Session.h"
#include "SessionWriter.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <linux/input.h>

#include <cmath>

using namespace Vorn::Tools;
using namespace Vorn::Workbench;

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr qint64 ms = 1000;

QByteArray session(const char *source, qint64 duration)
{
    return toJsonLine({0, SessionStart{source, "player.toml", 1'700'000'000'000'000}})
        + toJsonLine({duration, RecordRead{"/dev/input/event0", EV_KEY, KEY_INFO, 1, 1}});
}

class TimelineCommand : public testing::Test
{
protected:
    void SetUp() override
    {
        m_options.file = m_folder.filePath("a.jsonl");
        m_options.output = m_folder.filePath("a.svg");
    }

    int run(const QByteArray &sessions)
    {
        QFile file(m_options.file);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(sessions);
        file.close();
        QFile::remove(m_options.output);
        testing::internal::CaptureStderr();
        const int status = timeline(m_options);
        m_err = QString::fromStdString(testing::internal::GetCapturedStderr())
                    .replace(m_folder.path() + QLatin1Char('/'), QString())
                    .toStdString();
        return status;
    }

    std::string picture() const
    {
        QFile file(m_options.output);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "(no picture)";
    }

    /// Nothing is drawn, and stderr says why.
    void expectRefusal(const QByteArray &sessions, const std::string &message)
    {
        EXPECT_EQ(run(sessions), Failure);
        EXPECT_EQ(m_err, message);
        EXPECT_FALSE(QFile::exists(m_options.output));
    }

    const QTemporaryDir m_folder;
    Vorn::Tools::TimelineOptions m_options;
    std::string m_err;
};

} // namespace

TEST_F(TimelineCommand, DrawsTheOnlySession)
{
    EXPECT_EQ(run(session("a.scenario", 2200 * ms)), Success);
    EXPECT_THAT(m_err, IsEmpty());
    EXPECT_THAT(picture(), AllOf(HasSubstr("a.scenario"), Not(HasSubstr("session 1"))));
    m_options.session = 1;
    EXPECT_EQ(run(session("a.scenario", 2200 * ms)), Success);
}

TEST_F(TimelineCommand, AsksWhichOfSeveralSessionsToDraw)
{
    const QByteArray sessions = session("a.scenario", ms) + session("b.scenario", 2 * ms);
    expectRefusal(sessions,
                  "a.jsonl: error: contains 2 sessions; choose one with --session\n"
                  "  1  2023-11-14 22:13:20 UTC  a.scenario, profile player.toml\n"
                  "  2  2023-11-14 22:13:20 UTC  b.scenario, profile player.toml\n");
    m_options.session = 3;
    expectRefusal(sessions,
                  "a.jsonl: error: has no session 3; it contains 2\n"
                  "  1  2023-11-14 22:13:20 UTC  a.scenario, profile player.toml\n"
                  "  2  2023-11-14 22:13:20 UTC  b.scenario, profile player.toml\n");
}

TEST_F(TimelineCommand, DrawsTheSessionThatIsChosen)
{
    m_options.session = 2;
    EXPECT_EQ(run(session("a.scenario", 9000 * ms) + session("b.scenario", 2000 * ms)
                  + session("c.scenario", 3000 * ms)),
              Success);
    EXPECT_EQ(m_err, "a.jsonl: session 2 of 3 drawn\n");
    EXPECT_THAT(picture(),
                AllOf(HasSubstr("b.scenario"), HasSubstr("session 2 of 3"),
                      HasSubstr("0.000 s to 2.000 s"), Not(HasSubstr("9.000"))));
}

TEST_F(TimelineCommand, ListsNamesThatCannotControlATerminal)
{
    EXPECT_EQ(run(session("\x1b[2J\xe2\x80\xae.scenario", ms) + session("%1 %n", ms)), Failure);
    EXPECT_THAT(m_err,
                AllOf(HasSubstr("  \\u001b[2J\\u202e.scenario, profile"),
                      HasSubstr("  %1 %n, profile"), Not(HasSubstr("\x1b"))));
}

TEST_F(TimelineCommand, CountsASessionThatLacksItsBeginning)
{
    const QByteArray remark = toJsonLine({5, Remark{"a"}});
    EXPECT_EQ(run(remark + remark), Success);
    EXPECT_EQ(run(remark + session("b.scenario", ms)), Failure);
    EXPECT_THAT(m_err, HasSubstr("  1  without its beginning\n  2  2023-"));
}

TEST_F(TimelineCommand, FindsMistakesInTheSessionsThatItDoesNotDraw)
{
    m_options.session = 1;
    expectRefusal(session("a.scenario", ms) + "{}\n", "a.jsonl:3: error: 'kind' is missing\n");
}

TEST_F(TimelineCommand, DrawsFromTheVeryBeginning)
{
    m_options.from = 0;
    EXPECT_EQ(run(session("a.scenario", 2200 * ms)), Success) << m_err;
    EXPECT_EQ(run(session("a.scenario", 0)), Success) << m_err;
}

TEST_F(TimelineCommand, RefusesAPartThatIsNotInTheSession)
{
    m_options.from = 2.2;
    expectRefusal(session("a.scenario", 2200 * ms),
                  "a.jsonl: error: --from 2.200 s is after the session; it is from 0.000 s to "
                  "2.200 s\n");
    m_options.from = -1;
    m_options.to = 1;
    expectRefusal(toJsonLine({3000 * ms, Remark{"a"}}) + toJsonLine({4000 * ms, Remark{"b"}}),
                  "a.jsonl: error: --to 1.000 s is before the session; it is from 3.000 s to "
                  "4.000 s\n");
}

TEST_F(TimelineCommand, RefusesAPartThatEndsBeforeItBegins)
{
    const std::pair<double, double> parts[] = {{3, 1}, {2, 2}};
    for (const auto &[from, to] : parts) {
        m_options.from = from;
        m_options.to = to;
        EXPECT_EQ(run(session("a.scenario", 5000 * ms)), Failure);
        EXPECT_THAT(m_err, HasSubstr("is not before --to"));
        EXPECT_FALSE(QFile::exists(m_options.output));
    }
    m_options.from = std::nan("");
    expectRefusal(session("a.scenario", 5000 * ms),
                  "error: --from and --to are numbers of seconds\n");
}

TEST_F(TimelineCommand, NeverReplacesTheSession)
{
    m_options.file = m_folder.filePath("a.svg");
    m_options.force = true;
    const QByteArray text = session("a.scenario", ms);
    QFile file(m_options.file);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    testing::internal::CaptureStderr();
    EXPECT_EQ(timeline(m_options), Failure);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("is one of the files that were"));
    EXPECT_EQ(picture(), text.toStdString());
}

TEST_F(TimelineCommand, RefusesAFileWithoutASession)
{
    const std::string none = "a.jsonl: error: contains no session; to get one, use "
                             "'vorn-input monitor --json' or 'vorn-input simulate --json'\n";
    expectRefusal("", none);
    expectRefusal("{\"kind\":\"weather\",\"time\":1}\n", none);
}

TEST(SessionProgress, TellsTimeAndShareOfTheFile)
{
    EXPECT_EQ(sessionProgress(12'345 * ms, 50, 200).toStdString(), " 25 %, at 12.345 s");
    EXPECT_EQ(sessionProgress(0, 200, 200).toStdString(), "100 %, at 0.000 s");
    EXPECT_EQ(sessionProgress(500 * ms, 50, 0).toStdString(), "at 0.500 s") << "a pipe";
}
