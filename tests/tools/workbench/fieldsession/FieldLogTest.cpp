#include "FieldLog.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

using namespace Vorn;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const QByteArray line = "DEBUG LinuxInputListener:  type: 1 code:115 value:1\n";

/// Takes the place of the standard input.
class StandardInput
{
public:
    explicit StandardInput(int fd)
        : m_before(dup(STDIN_FILENO))
    {
        dup2(fd, STDIN_FILENO);
        close(fd);
    }
    ~StandardInput()
    {
        dup2(m_before, STDIN_FILENO);
        close(m_before);
    }
    StandardInput(const StandardInput &) = delete;
    StandardInput &operator=(const StandardInput &) = delete;

    static QByteArray rest()
    {
        QByteArray bytes(1000, '\0');
        const ssize_t size = read(STDIN_FILENO, bytes.data(), 1000);
        return bytes.left(static_cast<int>(std::max<ssize_t>(size, 0)));
    }

private:
    const int m_before;
};

int pipeWith(const QByteArray &bytes)
{
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    EXPECT_EQ(write(ends[1], bytes.constData(), static_cast<std::size_t>(bytes.size())),
              bytes.size());
    close(ends[1]);
    return ends[0];
}

auto openDescriptors()
{
    return QDir("/proc/self/fd")
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

class FieldLogTest : public testing::Test
{
protected:
    QString write(const char *name, const QByteArray &content) const
    {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    /// Reads a file, as far as there are fewer than @p enough lines.
    std::vector<std::string> diagnosticsOf(const QString &path, int enough = 1000)
    {
        std::vector<std::string> texts;
        int lines = 0;
        const auto isEnough = [&lines, enough] { return lines++ == enough; };
        const auto sink = [this](const SessionEntry &entry) { m_entries.push_back(entry); };
        for (const Diagnostic &diagnostic : readLog(path, {}, sink, isEnough))
            texts.push_back(diagnostic.toString().toStdString());
        return texts;
    }

    int keys() const
    {
        return static_cast<int>(
            std::count_if(m_entries.begin(), m_entries.end(), [](const SessionEntry &entry) {
                return std::holds_alternative<RecordRead>(entry.what);
            }));
    }

    std::vector<SessionEntry> m_entries;

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(FieldLogTest, BeginsWithWhatShowsThatItIsALog)
{
    EXPECT_TRUE(beginsLikeLog(line));
    EXPECT_TRUE(beginsLikeLog("x\n\n" + line + "y"));
    EXPECT_TRUE(beginsLikeLog("\x1f\x8b\x08"));
    EXPECT_TRUE(beginsLikeLog("{\"MESSAGE\":\"x\"}\n{}"));
    EXPECT_TRUE(beginsLikeLog(" {\"__REALTIME_TIMESTAMP\":\"1\"}"));
    EXPECT_FALSE(beginsLikeLog("{}\n{\"MESSAGE\":\"x\"}")) << "a session's lines are objects, too";
    EXPECT_FALSE(beginsLikeLog("{\"entry\":\"event\"}\n" + line));
    EXPECT_FALSE(beginsLikeLog("plug panel\npress KEY_A\n"));
    EXPECT_FALSE(beginsLikeLog("\x1f"));
    EXPECT_FALSE(beginsLikeLog(""));
}

TEST_F(FieldLogTest, IsKnownByItsNameOrItsContent)
{
    for (const char *name : {"/no/such/app.log", "app.log.1", "app.log.12.gz", "app.log.gz"})
        EXPECT_TRUE(isLog(name)) << name;
    for (const char *name : {"/no/such/file", "app.logs", "applog", "app.log.txt", "/"})
        EXPECT_FALSE(isLog(name)) << name;
    EXPECT_TRUE(isLog(write("messages", line)));
    EXPECT_FALSE(isLog(write("other", "x\n")));
    for (const char *name : {"a.scenario", "a.evemu", "a.umockdev"})
        EXPECT_FALSE(isLog(write(name, line))) << name;
    EXPECT_TRUE(isLog(write("late", QByteArray(65'535 - line.size(), '\n') + line)));
    EXPECT_FALSE(isLog(write("later", QByteArray(65'536, '\n') + line))) << "nobody looks so far";
}

TEST_F(FieldLogTest, IsKnownOnAPipeWithoutTakingAnythingFromIt)
{
    const auto before = openDescriptors();
    {
        const StandardInput input(pipeWith(line));
        EXPECT_TRUE(isLog("-"));
        EXPECT_TRUE(isLog("-"));
        EXPECT_EQ(StandardInput::rest(), line);
    }
    {
        const StandardInput input(pipeWith("x\n"));
        EXPECT_FALSE(isLog("-"));
        EXPECT_EQ(StandardInput::rest(), "x\n");
    }
    {
        const StandardInput input(pipeWith(""));
        EXPECT_FALSE(isLog("-"));
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(FieldLogTest, IsKnownInAFileFromWhereItIsReadOn)
{
    const QByteArray path = write("messages", line + "x\n").toLocal8Bit();
    const StandardInput input(open(path.constData(), O_RDONLY | O_CLOEXEC));
    EXPECT_TRUE(isLog("-"));
    EXPECT_EQ(lseek(STDIN_FILENO, 0, SEEK_CUR), 0);
    ASSERT_EQ(lseek(STDIN_FILENO, line.size(), SEEK_SET), line.size());
    EXPECT_FALSE(isLog("-"));
    EXPECT_EQ(StandardInput::rest(), "x\n");
}

TEST_F(FieldLogTest, IsReadUpToWhereItIsEnough)
{
    const QString path = write("app.log", line.repeated(5));
    EXPECT_THAT(diagnosticsOf(path), IsEmpty());
    EXPECT_EQ(keys(), 5);
    m_entries.clear();
    EXPECT_THAT(diagnosticsOf(path, 2), IsEmpty());
    EXPECT_EQ(keys(), 2);
    m_entries.clear();
    EXPECT_THAT(diagnosticsOf(path, 0), IsEmpty()) << "nobody wanted to know";
    EXPECT_EQ(keys(), 0);
}

TEST_F(FieldLogTest, SaysHowItIsRead)
{
    diagnosticsOf(write("app.log", line));
    ASSERT_GT(m_entries.size(), 1U);
    EXPECT_EQ(std::get<Remark>(m_entries[1].what).text.toStdString(),
              "read from a log with pattern '%-5p %c: %m%n' (guessed, without times); it has no "
              "times: the order is right, and all times are 0");
}

TEST_F(FieldLogTest, SaysThatNoLineIsTheLibrarys)
{
    const QString path = write("app.log", "DEBUG Input: name: x\n");
    EXPECT_THAT(diagnosticsOf(path),
                ElementsAre(path.toStdString()
                            + ": error: contains no line of the library; if it should, give the "
                              "layout with --pattern"));
    EXPECT_THAT(m_entries, IsEmpty());
    const QString none = "/no/such/app.log";
    EXPECT_THAT(diagnosticsOf(none),
                ElementsAre("/no/such/app.log: error: cannot be read: No such file or directory"));
}
