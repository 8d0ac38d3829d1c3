#include "ProfileWatcher.h"

#include "VirtualClock.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

using namespace Vorn;
using namespace Vorn::Workbench;

namespace {

QByteArray profileWithInitial(const QByteArray &initial)
{
    return "initial = \"" + initial + "\"\ndevice = []\n";
}

class ProfileWatcherTest : public testing::Test
{
protected:
    ProfileWatcherTest() { writeInPlace(profileWithInitial("one")); }

    QString path() const { return m_folder.filePath(QStringLiteral("profile.toml")); }

    void writeInPlace(const QByteArray &content) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    void replace(const QByteArray &content) const
    {
        QSaveFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        ASSERT_TRUE(file.commit());
    }

    bool waitForInitial(const char *initial)
    {
        return m_clock.waitUntil([&] {
            return !m_seen.isEmpty() && m_seen.last().profile.initial == QLatin1String(initial);
        });
    }

    void watch()
    {
        m_watcher = std::make_unique<ProfileWatcher>(
            path(), [this](const ParsedProfile &parsed) { m_seen.append(parsed); },
            [this](const QString &problem) { m_problems.append(problem); });
    }

    void letItSettle() { m_clock.advance(std::chrono::seconds(1)); }

    bool waitForProblem(const QString &problem)
    {
        return m_clock.waitUntil(
            [&] { return !m_problems.isEmpty() && m_problems.last() == problem; });
    }

    QString folder() const { return m_folder.path(); }
    const QStringList &problems() const { return m_problems; }
    const QVector<ParsedProfile> &seen() const { return m_seen; }

private:
    Vorn::Sim::VirtualClock m_clock;
    QTemporaryDir m_folder;
    QVector<ParsedProfile> m_seen;
    QStringList m_problems;
    std::unique_ptr<ProfileWatcher> m_watcher;
};

} // namespace

TEST_F(ProfileWatcherTest, SeesAFileThatIsWrittenInPlace)
{
    watch();
    writeInPlace(profileWithInitial("two"));
    EXPECT_TRUE(waitForInitial("two"));
}

TEST_F(ProfileWatcherTest, SeesEachFileThatTakesThePlaceOfTheOther)
{
    watch();
    for (const char *initial : {"two", "three", "four"}) {
        replace(profileWithInitial(initial));
        EXPECT_TRUE(waitForInitial(initial));
    }
}

TEST_F(ProfileWatcherTest, WaitsForAFileThatIsMissingForTheMoment)
{
    watch();
    ASSERT_TRUE(QFile::remove(path()));
    letItSettle();
    writeInPlace(profileWithInitial("back"));
    EXPECT_TRUE(waitForInitial("back"));
}

TEST_F(ProfileWatcherTest, TellsThatTheFileIsGoneAndThatItIsBack)
{
    watch();
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_TRUE(waitForProblem("is gone"));
    letItSettle();
    EXPECT_EQ(problems().size(), 1);
    writeInPlace(profileWithInitial("one"));
    EXPECT_TRUE(waitForProblem({}));
    EXPECT_TRUE(seen().isEmpty());
    writeInPlace(profileWithInitial("two"));
    EXPECT_TRUE(waitForInitial("two"));
    EXPECT_EQ(problems().size(), 2);
}

TEST_F(ProfileWatcherTest, FindsTheFileAgainIfItsFolderWasGone)
{
    watch();
    ASSERT_TRUE(QDir(folder()).removeRecursively());
    EXPECT_TRUE(waitForProblem("is gone"));
    ASSERT_TRUE(QDir().mkdir(folder()));
    writeInPlace(profileWithInitial("one"));
    EXPECT_TRUE(waitForProblem({}));
    replace(profileWithInitial("two"));
    EXPECT_TRUE(waitForInitial("two"));
}

TEST_F(ProfileWatcherTest, TellsWhyTheFileCannotBeRead)
{
    watch();
    ASSERT_TRUE(QFile::remove(path()));
    ASSERT_TRUE(QDir().mkdir(path()));
    EXPECT_TRUE(waitForProblem("cannot be read: it is a folder"));
}

TEST_F(ProfileWatcherTest, PassesMistakesOn)
{
    watch();
    writeInPlace("{");
    letItSettle();
    ASSERT_EQ(seen().size(), 1);
    EXPECT_TRUE(hasErrors(seen().first().diagnostics));
}

TEST_F(ProfileWatcherTest, TakesTheSameContentForNoChange)
{
    watch();
    replace(profileWithInitial("one"));
    letItSettle();
    EXPECT_TRUE(seen().isEmpty());
    replace(profileWithInitial("two"));
    EXPECT_TRUE(waitForInitial("two"));
    EXPECT_EQ(seen().size(), 1);
}
