#include "ProfileWatcher.h"

#include "VirtualClock.h"

#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

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
            path(), [this](const ParsedProfile &parsed) { m_seen.append(parsed); });
    }

    void letItSettle() { m_clock.advance(std::chrono::seconds(1)); }

    const QVector<ParsedProfile> &seen() const { return m_seen; }

private:
    Vorn::Sim::VirtualClock m_clock;
    QTemporaryDir m_folder;
    QVector<ParsedProfile> m_seen;
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
