#include "LogOrder.h"

#include "LogText.h"

#include <QDateTime>
#include <QDir>
#include <QMap>

using namespace Vorn;
using namespace Vorn::Workbench;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

const QByteArray noContent;

/// In the order that the first times give; a name without a time has no date.
QString ordered(const QStringList &files, const QMap<QString, qint64> &times,
                Diagnostics *diagnostics)
{
    const auto firstTime = [&](const QString &path) {
        return times.contains(path) ? std::optional(times.value(path)) : std::nullopt;
    };
    return inLogOrder(files, firstTime, diagnostics).join(' ');
}

} // namespace

TEST(LogOrder, FindsTheOlderPartsBesideAFile)
{
    const LogFolder folder;
    for (const char *name :
         {"app.log", "app.log.1", "app.log.2.gz", "app.log-20260102", "app.log.2026-01-01.gz",
          "app.logger", "app.log.txt", "app.log.1.bak", "xapp.log.1"})
        folder.write(name, noContent);
    QStringList found;
    for (const QString &path : rotatedFiles(folder.path("app.log")))
        found += QFileInfo(path).fileName();
    EXPECT_EQ(found.join(' ').toStdString(),
              "app.log app.log-20260102 app.log.1 app.log.2.gz app.log.2026-01-01.gz");
}

TEST(LogOrder, FindsThemByTheirNamesWhenTheyWereCopiedInAnyOrder)
{
    const LogFolder folder;
    int day = 1;
    for (const char *name : {"app.log.1", "app.log.3", "app.log.2", "app.log"}) {
        QFile file(folder.write(name, noContent));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime(QDate(2026, 1, day++), QTime(10, 0), Qt::UTC),
                                     QFileDevice::FileModificationTime));
    }
    QStringList found;
    for (const QString &path : rotatedFiles(folder.path("app.log")))
        found += QFileInfo(path).fileName();
    EXPECT_EQ(found.join(' ').toStdString(), "app.log app.log.1 app.log.2 app.log.3");
}

TEST(LogOrder, KeepsTheFolderAsItWasWritten)
{
    const LogFolder folder;
    folder.write("a[1].log", noContent);
    folder.write("a[1].log.1", noContent);
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path("")));
    EXPECT_EQ(rotatedFiles("a[1].log").join(' ').toStdString(), "a[1].log a[1].log.1");
    EXPECT_EQ(rotatedFiles("./a[1].log").join(' ').toStdString(), "./a[1].log ./a[1].log.1");
    QDir::setCurrent(before);
}

TEST(LogOrder, PutsFilesInTheOrderOfTheirTimes)
{
    Diagnostics diagnostics;
    EXPECT_EQ(ordered({"c", "a", "b"}, {{"a", 1}, {"b", 2}, {"c", 3}}, &diagnostics), "a b c");
    EXPECT_THAT(diagnostics, SizeIs(0));
}

TEST(LogOrder, TakesTheNumbersOfFilesWithoutDates)
{
    Diagnostics diagnostics;
    EXPECT_EQ(ordered({"app.log", "app.log.10.gz", "app.log.2"}, {{"app.log", 1}}, &diagnostics),
              "app.log.10.gz app.log.2 app.log");
    EXPECT_THAT(diagnostics, SizeIs(0));
}

TEST(LogOrder, TakesNumbersForTheOrderOfOneLogOnly)
{
    const auto isKnown = [](const QStringList &files) {
        Diagnostics diagnostics;
        ordered(files, {}, &diagnostics);
        return diagnostics.isEmpty();
    };
    EXPECT_TRUE(isKnown({"app.log", "app.log.1"}));
    EXPECT_TRUE(isKnown({"app.log.gz", "app.log.1.gz"}));
    EXPECT_TRUE(isKnown({"app.log.1", "app.log.2.gz"}));
    EXPECT_FALSE(isKnown({"app.log", "other.log.1"}));
    EXPECT_FALSE(isKnown({"app.log.1", "app.log.1.gz"}));
    EXPECT_FALSE(isKnown({"app.log.1234567", "app.log"})) << "a date";
    EXPECT_TRUE(isKnown({"app.log.123456", "app.log"}));
    EXPECT_TRUE(isKnown({"app.log"})) << "one needs no order";
    EXPECT_TRUE(isKnown({}));
}

TEST(LogOrder, KeepsTheOrderOfFilesThatBeginAtTheSameTime)
{
    Diagnostics diagnostics;
    EXPECT_EQ(ordered({"c", "b", "a"}, {{"a", 1}, {"b", 1}, {"c", 1}}, &diagnostics), "c b a");
}

TEST(LogOrder, SaysThatItDoesNotKnowTheOrder)
{
    Diagnostics diagnostics;
    EXPECT_EQ(ordered({"b", "a"}, {{"b", 1}}, &diagnostics), "b a");
    ASSERT_THAT(diagnostics, SizeIs(1));
    EXPECT_THAT(diagnostics.front().toString().toStdString(),
                HasSubstr("a: warning: no line of the library with a date; the files are read in "
                          "the order given"));
}

TEST(LogOrder, HasAFileOnce)
{
    const LogFolder folder;
    const QString path = folder.write("app.log", noContent);
    Diagnostics diagnostics;
    EXPECT_EQ(ordered({path, folder.path("./app.log")}, {}, &diagnostics), path);
    EXPECT_EQ(ordered({"-", "-"}, {}, &diagnostics), "-");
}
