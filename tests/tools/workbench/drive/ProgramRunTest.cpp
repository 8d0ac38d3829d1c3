#include "ProgramRun.h"

#include "Interruption.h"
#include "ProgramFiles.h"

#include <QDir>
#include <QSet>

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <memory>
#include <vector>

using namespace Vorn::Workbench;
using testing::AnyOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using Ready = ProgramRun::Ready;

namespace {

// For what comes at once, also on a machine that has a lot to do.
constexpr int patienceMs = 60'000;

/// A library that every program has anyway.
QString harmlessLibrary()
{
    Dl_info info = {};
    dladdr(reinterpret_cast<void *>(&dladdr), &info);
    return QFile::decodeName(info.dli_fname);
}

ProgramRun::Start script(const QString &text)
{
    ProgramRun::Start start;
    start.command = QStringList{"bash", "-c", text};
    start.passesOutput = false;
    start.quitMs = patienceMs;
    start.terminateMs = patienceMs;
    return start;
}

/// What a script prints until it ends by itself.
std::string outputOf(const ProgramRun::Start &start)
{
    ProgramRun run(start);
    EXPECT_EQ(run.failure().toStdString(), "");
    EXPECT_EQ(run.wait(patienceMs), Ready::Ended);
    return run.output().toStdString();
}

std::string endingOf(const QString &text)
{
    ProgramRun run(script(text));
    EXPECT_EQ(run.wait(patienceMs), Ready::Ended);
    EXPECT_FALSE(run.isRunning());
    EXPECT_TRUE(run.hasQuit());
    return run.ending().toStdString();
}

/// Waits until a script has printed what it is expected to.
bool prints(ProgramRun *run, const QByteArray &text)
{
    const QDeadlineTimer deadline(patienceMs);
    while (!run->output().contains(text) && !deadline.hasExpired() && run->isRunning())
        run->wait(10);
    return run->output().contains(text);
}

bool isAlive(pid_t process)
{
    // A process that has ended may be kept by its new parent for a while.
    QFile file(QString("/proc/%1/stat").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray state = file.readAll();
    return !state.mid(state.lastIndexOf(')')).startsWith(") Z");
}

bool ends(pid_t process)
{
    const QDeadlineTimer deadline(patienceMs);
    while (isAlive(process) && !deadline.hasExpired())
        usleep(1000);
    return !isAlive(process);
}

/// Those that a program gets from this process anyway.
QSet<int> inheritedDescriptors()
{
    QSet<int> result;
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        const int flags = fcntl(descriptor, F_GETFD);
        if (flags >= 0 && !(flags & FD_CLOEXEC))
            result += descriptor;
    }
    return result;
}

class ProgramRunTest : public testing::Test, protected ProgramFiles
{
protected:
    // A request stays until the next construction, see Interruption.
    ~ProgramRunTest() override { const Interruption forgetsTheLast; }
};

} // namespace

TEST_F(ProgramRunTest, TellsHowAProgramEnded)
{
    EXPECT_EQ(endingOf("exit 0"), "exited with status 0");
    EXPECT_EQ(endingOf("exit 3"), "exited with status 3");
    EXPECT_EQ(endingOf("kill -SEGV $$"), "was killed by SIGSEGV (Segmentation fault)");
    EXPECT_EQ(endingOf("kill -KILL $$"), "was killed by SIGKILL (Killed)");
    EXPECT_EQ(endingOf(QString("kill -%1 $$").arg(SIGRTMIN + 1)),
              "was killed by signal " + std::to_string(SIGRTMIN + 1));
}

TEST_F(ProgramRunTest, KeepsBothStreamsInOrder)
{
    EXPECT_EQ(outputOf(script("echo a; echo b >&2; printf c")), "a\nb\nc");
    ProgramRun run(script("printf '\\033[1m\\n'"));
    EXPECT_EQ(run.wait(patienceMs), Ready::Ended);
    EXPECT_EQ(run.outputLines(), QStringList({"\\u001b[1m"}));
}

TEST_F(ProgramRunTest, ShowsWhatAProgramPrintsOnStandardErrorAsItComes)
{
    ProgramRun::Start start = script("echo a; printf b; read line <&$VORN_DRIVE_SOCKET");
    start.passesOutput = true;
    testing::internal::CaptureStderr();
    ProgramRun run(start);
    EXPECT_TRUE(prints(&run, "b"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "bash| a\n");
    testing::internal::CaptureStderr();
    run.end();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "bash| b\n");
}

TEST_F(ProgramRunTest, TakesMoreThanAPipeHolds)
{
    const std::string output =
        outputOf(script("i=0; while [ $i -lt 3000 ]; do echo "
                        "'a line of a hundred bytes, more or less ........................'; "
                        "i=$((i+1)); done; echo end"));
    EXPECT_EQ(output.size(), ProgramOutput::keptSize);
    EXPECT_EQ(output.substr(output.size() - 5), "\nend\n");
}

TEST_F(ProgramRunTest, GivesTheProgramNothingToRead)
{
    EXPECT_EQ(outputOf(script("cat; readlink /proc/$$/fd/0")), "/dev/null\n");
}

TEST_F(ProgramRunTest, HandsOverTheSocketAloneOfItsDescriptors)
{
    const QSet<int> inherited = inheritedDescriptors();
    const ProgramRun another(script("read line <&$VORN_DRIVE_SOCKET"));
    QStringList added;
    const QString output =
        QString::fromStdString(outputOf(script("ls /proc/$$/fd; echo $VORN_DRIVE_SOCKET")));
    const QStringList numbers = output.split('\n', Qt::SkipEmptyParts);
    for (const QString &number : numbers) {
        if (!inherited.contains(number.toInt()))
            added += number;
    }
    // In the list, and named by the variable.
    ASSERT_EQ(added.size(), 2) << output.toStdString();
    EXPECT_EQ(added[0], added[1]);
}

TEST_F(ProgramRunTest, RestoresTheSignals)
{
    struct sigaction before = {};
    sigaction(SIGPIPE, nullptr, &before);
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t all;
    sigset_t mask;
    sigemptyset(&all);
    sigaddset(&all, SIGUSR1);
    sigprocmask(SIG_BLOCK, &all, &mask);
    EXPECT_EQ(outputOf(script("grep -E '^Sig(Ign|Blk)' /proc/self/status")),
              "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
    sigprocmask(SIG_SETMASK, &mask, nullptr);
    sigaction(SIGPIPE, &before, nullptr);
}

TEST_F(ProgramRunTest, HandsOverTheEnvironmentWithThePreloadedLibraryFirst)
{
    const QString library = harmlessLibrary();
    qputenv("VORN_TEST_VARIABLE", "old");
    ProgramRun::Start start =
        script("echo $VORN_TEST_VARIABLE $OTHER; echo $LD_PRELOAD; echo \"<$VORN_DRIVE_PRELOAD>\"");
    start.environment = QStringList{"VORN_TEST_VARIABLE=new", "OTHER=a b"};
    start.preload = library;
    qunsetenv("LD_PRELOAD");
    EXPECT_EQ(outputOf(start), "new a b\n" + library.toStdString() + "\n<>\n");
    qputenv("LD_PRELOAD", library.toLocal8Bit());
    EXPECT_EQ(outputOf(start),
              "new a b\n" + library.toStdString() + ":" + library.toStdString() + "\n<"
                  + library.toStdString() + ">\n");
    qunsetenv("LD_PRELOAD");
    qunsetenv("VORN_TEST_VARIABLE");
}

TEST_F(ProgramRunTest, ReplacesAVariableOfTheEnvironment)
{
    qputenv("VORN_TEST_VARIABLE", "old");
    ProgramRun::Start start =
        script("tr '\\0' '\\n' </proc/$$/environ | grep ^VORN_TEST_VARIABLE=");
    start.environment = QStringList{"VORN_TEST_VARIABLE=new"};
    EXPECT_EQ(outputOf(start), "VORN_TEST_VARIABLE=new\n");
    qunsetenv("VORN_TEST_VARIABLE");
}

TEST_F(ProgramRunTest, PreloadsNothingUnlessItIsAskedTo)
{
    qunsetenv("LD_PRELOAD");
    EXPECT_EQ(outputOf(script("echo ${LD_PRELOAD-none} ${VORN_DRIVE_PRELOAD-none}")),
              "none none\n");
}

TEST_F(ProgramRunTest, TellsWhatCannotBeStarted)
{
    const auto failure = [](const QStringList &command, const QString &preload = {}) {
        ProgramRun::Start start;
        start.command = command;
        start.preload = preload;
        ProgramRun run(start);
        EXPECT_FALSE(run.isRunning());
        EXPECT_EQ(run.wait(patienceMs), Ready::Ended);
        return run.failure().toStdString();
    };
    EXPECT_EQ(failure({}), "there is no program to start");
    EXPECT_EQ(failure({"/nowhere/product"}),
              "/nowhere/product cannot be started: No such file or directory");
    EXPECT_EQ(failure({write("data", "x", false)}),
              path("data").toStdString() + " cannot be started: Permission denied");
    EXPECT_EQ(failure({write("empty", "")}),
              path("empty").toStdString() + " cannot be started: Exec format error");
    // With these the loader would go on without it, on the machine's own devices.
    EXPECT_THAT(
        failure({"/bin/true"}, path("missing.so")),
        HasSubstr("/missing.so, which has to be preloaded, is missing or cannot be read; "));
    QDir(path("")).mkdir("a b");
    EXPECT_THAT(failure({"/bin/true"}, write("a b/x.so", "")),
                HasSubstr("cannot be preloaded, because of the blank or colon in its path; "));
}

TEST_F(ProgramRunTest, ReadsTheSocketBeforeItTellsTheEnd)
{
    ProgramRun run(script("echo hello >&$VORN_DRIVE_SOCKET"));
    ASSERT_EQ(run.wait(patienceMs), Ready::Socket);
    ASSERT_EQ(run.wait(patienceMs), Ready::Socket);
    char bytes[100] = {};
    EXPECT_EQ(read(run.socket(), bytes, sizeof bytes), 6);
    EXPECT_STREQ(bytes, "hello\n");
    EXPECT_EQ(run.wait(patienceMs), Ready::Ended);
    EXPECT_EQ(run.wait(patienceMs), Ready::Ended);
}

TEST_F(ProgramRunTest, ReachesTheProgram)
{
    ProgramRun run(script("read line <&$VORN_DRIVE_SOCKET; echo \"got $line\"; exit 5"));
    EXPECT_EQ(run.wait(0), Ready::TimedOut);
    ASSERT_EQ(::write(run.socket(), "this\n", 5), 5);
    EXPECT_EQ(run.wait(-1), Ready::Ended);
    EXPECT_EQ(run.output(), "got this\n");
    EXPECT_EQ(run.ending(), "exited with status 5");
}

TEST_F(ProgramRunTest, NoticesAProgramThatRunsOnWithoutItsSocket)
{
    ProgramRun::Start start =
        script("eval \"exec $VORN_DRIVE_SOCKET>&-\"; echo closed; kill -STOP $$");
    start.quitMs = 20;
    start.closedMs = 20;
    ProgramRun run(start);
    EXPECT_TRUE(prints(&run, "closed"));
    EXPECT_EQ(run.wait(-1), Ready::Closed);
    EXPECT_TRUE(run.isRunning());
}

TEST_F(ProgramRunTest, WaitsForTheEndOfAProgramThatHasClosedItsSocket)
{
    ProgramRun::Start start =
        script("eval \"exec $VORN_DRIVE_SOCKET>&-\"; echo closed; sleep 0.1; exit 3");
    start.closedMs = patienceMs;
    ProgramRun run(start);
    EXPECT_TRUE(prints(&run, "closed"));
    EXPECT_EQ(run.wait(0), Ready::Ended);
    EXPECT_EQ(run.ending(), "exited with status 3");
}

TEST_F(ProgramRunTest, GoesOnWithAProgramThatClosesItsStreams)
{
    ProgramRun run(script("echo last; exec >&- 2>&-; read line <&$VORN_DRIVE_SOCKET"));
    EXPECT_TRUE(prints(&run, "last"));
    EXPECT_EQ(run.wait(0), Ready::TimedOut);
    EXPECT_TRUE(run.isRunning());
    ASSERT_EQ(::write(run.socket(), "\n", 1), 1);
    EXPECT_EQ(run.wait(patienceMs), Ready::Ended);
    EXPECT_EQ(run.output(), "last\n");
}

TEST_F(ProgramRunTest, AsksAProgramToQuitFirst)
{
    ProgramRun run(script("read line <&$VORN_DRIVE_SOCKET; exit 4"));
    run.end();
    EXPECT_EQ(run.ending(), "exited with status 4");
    EXPECT_TRUE(run.hasQuit());
    run.end();
    EXPECT_EQ(run.ending(), "exited with status 4");
}

TEST_F(ProgramRunTest, TerminatesAProgramThatDoesNotQuit)
{
    ProgramRun::Start start =
        script("trap 'exit 0' TERM; echo ready; while :; do sleep 1000; done");
    start.quitMs = 20;
    ProgramRun run(start);
    EXPECT_TRUE(prints(&run, "ready"));
    run.end();
    EXPECT_EQ(run.ending().toStdString(),
              "did not quit when asked, and exited with status 0 after SIGTERM");
    EXPECT_FALSE(run.hasQuit());
}

TEST_F(ProgramRunTest, KillsAProgramThatDoesNotEnd)
{
    ProgramRun::Start start = script("trap '' TERM; echo ready; while :; do sleep 1000; done");
    start.quitMs = 20;
    start.terminateMs = 20;
    ProgramRun run(start);
    EXPECT_TRUE(prints(&run, "ready"));
    run.end();
    EXPECT_EQ(run.ending().toStdString(),
              "did not quit when asked, did not end at SIGTERM, and was killed by SIGKILL "
              "(Killed)");
    EXPECT_FALSE(run.hasQuit());
}

TEST_F(ProgramRunTest, EndsAStoppedProgram)
{
    ProgramRun::Start start = script("echo ready; kill -STOP $$");
    start.quitMs = 20;
    ProgramRun run(start);
    EXPECT_TRUE(prints(&run, "ready"));
    run.end();
    EXPECT_FALSE(run.isRunning());
    EXPECT_THAT(run.ending().toStdString(), HasSubstr("did not quit when asked, and "));
}

TEST_F(ProgramRunTest, EndsTheProcessesThatTheProgramLeavesBehind)
{
    ProgramRun run(script("sleep 1000 & echo $!; exit 0"));
    EXPECT_EQ(run.wait(patienceMs), Ready::Ended);
    EXPECT_EQ(run.ending(), "exited with status 0");
    const pid_t child = run.output().trimmed().toInt();
    ASSERT_GT(child, 0);
    EXPECT_TRUE(ends(child));
}

TEST_F(ProgramRunTest, EndsTheProgramWithItself)
{
    pid_t process = 0;
    {
        ProgramRun run(script("echo $$; trap '' TERM; read line <&$VORN_DRIVE_SOCKET"));
        EXPECT_TRUE(prints(&run, "\n"));
        process = run.output().trimmed().toInt();
    }
    ASSERT_GT(process, 0);
    EXPECT_FALSE(isAlive(process));
}

TEST_F(ProgramRunTest, IsEndedByTheSystemWhenNobodyEndsIt)
{
    int pipe[2];
    ASSERT_EQ(pipe2(pipe, O_CLOEXEC), 0);
    const pid_t driver = fork();
    if (driver == 0) {
        ProgramRun run(script("echo $$; while :; do sleep 1000; done"));
        prints(&run, "\n");
        const QByteArray process = run.output();
        const ssize_t written = ::write(pipe[1], process.constData(), std::size_t(process.size()));
        _exit(written > 0 ? 0 : 1);
    }
    close(pipe[1]);
    char bytes[20] = {};
    EXPECT_GT(read(pipe[0], bytes, sizeof bytes - 1), 0);
    close(pipe[0]);
    const pid_t process = QByteArray(bytes).trimmed().toInt();
    ASSERT_GT(process, 0);
    EXPECT_TRUE(ends(process));
}

TEST_F(ProgramRunTest, IsInterruptedBeforeAndDuringAWait)
{
    const Interruption interruption;
    ProgramRun run(script("read line <&$VORN_DRIVE_SOCKET"));
    std::raise(SIGINT);
    EXPECT_EQ(run.wait(-1), Ready::Interrupted);
    const Interruption again;
    // It is sent while the process waits, by the program itself.
    ProgramRun sender(
        script(QString("kill -TERM %1; read line <&$VORN_DRIVE_SOCKET").arg(getpid())));
    EXPECT_EQ(sender.wait(-1), Ready::Interrupted);
    // Nobody asks then: the work is to end.
    sender.end();
    EXPECT_EQ(sender.ending(), "was killed by SIGTERM (Terminated)");
}

TEST_F(ProgramRunTest, RunsSeveralAtATime)
{
    std::vector<std::unique_ptr<ProgramRun>> runs;
    for (int i = 0; i < 8; ++i) {
        runs.push_back(std::make_unique<ProgramRun>(
            script(QString("read line <&$VORN_DRIVE_SOCKET; echo $line; exit %1").arg(i))));
    }
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const QByteArray line = QByteArray::number(int(i)) + " of 8\n";
        ASSERT_EQ(::write(runs[i]->socket(), line.constData(), std::size_t(line.size())),
                  line.size());
    }
    // In another order: none waits for one that was started later.
    for (std::size_t i = runs.size(); i-- > 0;) {
        EXPECT_EQ(runs[i]->wait(patienceMs), Ready::Ended);
        EXPECT_EQ(runs[i]->output().toStdString(), std::to_string(i) + " of 8\n");
        EXPECT_EQ(runs[i]->ending().toStdString(), "exited with status " + std::to_string(i));
    }
}

TEST_F(ProgramRunTest, KnowsTheEndWhereTheParentIgnoredChildren)
{
    std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(endingOf("exit 3"), "exited with status 3");
}

TEST_F(ProgramRunTest, LeavesTheHandlerOfThoseWhoWaitForTheirOwnChildren)
{
    const auto handler = [](int) {};
    std::signal(SIGCHLD, handler);
    EXPECT_EQ(endingOf("exit 3"), "exited with status 3");
    EXPECT_EQ(std::signal(SIGCHLD, SIG_DFL), static_cast<void (*)(int)>(handler));
}

TEST_F(ProgramRunTest, KnowsTheEndThatSomebodyElseHasSeen)
{
    ProgramRun run(script("echo $$; read line <&$VORN_DRIVE_SOCKET"));
    EXPECT_TRUE(prints(&run, "\n"));
    const pid_t process = run.output().trimmed().toInt();
    ASSERT_GT(process, 0);
    ASSERT_EQ(::write(run.socket(), "\n", 1), 1);
    EXPECT_EQ(waitpid(process, nullptr, 0), process);
    EXPECT_FALSE(run.isRunning());
    EXPECT_EQ(run.wait(0), Ready::Ended);
}

TEST_F(ProgramRunTest, LeavesNoProcessBehindInTheTable)
{
    ProgramRun run(script("echo $$; exit 0"));
    EXPECT_EQ(run.wait(patienceMs), Ready::Ended);
    const pid_t process = run.output().trimmed().toInt();
    EXPECT_EQ(waitpid(process, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(ProgramRunTest, LeavesNoDescriptorBehind)
{
    const auto count = [] {
        return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
    };
    const auto before = count();
    {
        ProgramRun run(script("read line <&$VORN_DRIVE_SOCKET"));
        EXPECT_GT(count(), before);
    }
    EXPECT_EQ(count(), before);
}
