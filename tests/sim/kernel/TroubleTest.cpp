#include "InputSubsystem.h"
#include "OpenNode.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace Vorn::Sim;

namespace {

const DeviceDescription panel = DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK});

// Makes simulations keep their files in a folder that the test knows.
class KnownFolder
{
public:
    KnownFolder() { qputenv("TMPDIR", QFile::encodeName(m_folder.path())); }

    /// The file that stands for @p name of /dev/input.
    QString path(const QString &name) const
    {
        const QStringList folders = QDir(m_folder.path()).entryList({QStringLiteral("vorn-sim-*")});
        return m_folder.filePath(folders.value(0)) + QStringLiteral("/dev/input/") + name;
    }

    void makeFile(const QString &name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(file.fileName());
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST(Trouble, WithoutDescriptorsLeftANodeCannotBeOpened)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const int next = ::open("/", O_RDONLY);
    ASSERT_GE(next, 0);
    ::close(next);
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit tight = {static_cast<rlim_t>(next), before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &tight), 0);
    const int error = OpenNode(node.path()).openError();
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(error, EMFILE);
}

TEST(Trouble, ASignalInterruptsAReadThatBlocks)
{
    InputSubsystem subsystem;
    const OpenNode node(subsystem.plug(0, panel).path(), O_RDONLY);
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &before), 0);
    std::atomic<bool> hasReturned{false};
    int error = 0;
    std::thread reader([&] {
        error = node.readError();
        hasReturned = true;
    });
    while (!hasReturned) {
        ::pthread_kill(reader.native_handle(), SIGUSR1);
        std::this_thread::yield();
    }
    reader.join();
    ::sigaction(SIGUSR1, &before, nullptr);
    EXPECT_EQ(error, EINTR);
}

TEST(TroubleDeathTest, FilesThatCannotBeMadeAreFatal)
{
    EXPECT_DEATH(
        {
            qputenv("TMPDIR", "/proc");
            InputSubsystem();
        },
        "InputSubsystem: no temporary folder: .+");
    EXPECT_DEATH(
        {
            const KnownFolder folder;
            InputSubsystem subsystem;
            folder.makeFile(QStringLiteral("event0"));
            subsystem.plug(0, panel);
        },
        "^InputSubsystem: cannot make a node: File exists");
}

TEST(TroubleDeathTest, FilesThatAreNotAsTheyWereLeftAreFatal)
{
    EXPECT_DEATH(
        {
            const KnownFolder folder;
            InputSubsystem subsystem;
            folder.makeFile(QStringLiteral("notes"));
            subsystem.removeInputDirectory();
        },
        "InputSubsystem: cannot remove the folder for /dev/input: Directory not empty");
    EXPECT_DEATH(
        {
            const KnownFolder folder;
            InputSubsystem subsystem;
            subsystem.plug(0, panel);
            QFile::remove(folder.path(QStringLiteral("event0")));
            subsystem.setPermissions(0, 0400);
        },
        "InputSubsystem: cannot change the mode of a node: No such file or directory");
}
