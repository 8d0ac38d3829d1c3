#include "ChildStart.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>
#include <vector>

namespace Vorn::Workbench {

const char socketVariable[] = "VORN_DRIVE_SOCKET";

namespace {

/// The ends of what connects both processes: first this one's, then the child's.
struct Channels
{
    int socket[2] = {-1, -1};
    int output[2] = {-1, -1};
    int error[2] = {-1, -1}; ///< the reason if the program cannot be executed
    int input = -1;

    Channels() = default;
    Channels(const Channels &) = delete;
    Channels &operator=(const Channels &) = delete;
    ~Channels()
    {
        for (const int *pair : {socket, output, error}) {
            closeEnd(pair[0]);
            closeEnd(pair[1]);
        }
        closeEnd(input);
    }

    bool open()
    {
        input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        return input >= 0 && socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, socket) == 0
            && pipe2(output, O_CLOEXEC) == 0 && pipe2(error, O_CLOEXEC) == 0
            && fcntl(socket[0], F_SETFL, O_NONBLOCK) == 0
            && fcntl(output[0], F_SETFL, O_NONBLOCK) == 0;
    }

    static int take(int *end) { return std::exchange(*end, -1); }
    static void closeEnd(int descriptor)
    {
        if (descriptor >= 0)
            close(descriptor);
    }
};

std::vector<char *> pointersTo(const QVector<QByteArray> &strings)
{
    std::vector<char *> pointers;
    for (const QByteArray &string : strings)
        pointers.push_back(const_cast<char *>(string.constData()));
    pointers.push_back(nullptr);
    return pointers;
}

void restoreSignals()
{
    for (int signal = 1; signal < NSIG; ++signal)
        std::signal(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// In the child. Only what is safe in a signal handler may be called.
[[noreturn]] void execute(const Channels &channels, const char *path, char *const *arguments,
                          char *const *environment, pid_t parent)
{
    setpgid(0, 0);
    restoreSignals();
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have ended before it was asked for its end.
    if (getppid() == parent && dup2(channels.input, STDIN_FILENO) >= 0
        && dup2(channels.output[1], STDOUT_FILENO) >= 0
        && dup2(channels.output[1], STDERR_FILENO) >= 0
        && fcntl(channels.socket[1], F_SETFD, 0) == 0)
        execve(path, arguments, environment);
    const int reason = errno;
    const ssize_t written = write(channels.error[1], &reason, sizeof reason);
    static_cast<void>(written);
    _exit(127);
}

/// @return why the program could not be executed; 0 if it was
int reasonFrom(int descriptor)
{
    int reason = 0;
    ssize_t size = 0;
    do {
        size = read(descriptor, &reason, sizeof reason);
    } while (size < 0 && errno == EINTR);
    return size == ssize_t(sizeof reason) ? reason : 0;
}

void reap(pid_t pid)
{
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace

Child startChild(const QByteArray &path, const QVector<QByteArray> &arguments,
                 QVector<QByteArray> environment)
{
    Child child;
    Channels channels;
    if (!channels.open()) {
        child.error = qt_error_string(errno);
        return child;
    }
    environment += QByteArray(socketVariable) + '=' + QByteArray::number(channels.socket[1]);
    const std::vector<char *> argumentPointers = pointersTo(arguments);
    const std::vector<char *> environmentPointers = pointersTo(environment);
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid < 0) {
        child.error = qt_error_string(errno);
        return child;
    }
    if (pid == 0)
        execute(channels, path.constData(), argumentPointers.data(), environmentPointers.data(),
                parent);
    // In both processes, as neither knows which of them is first.
    setpgid(pid, pid);
    Channels::closeEnd(Channels::take(&channels.error[1]));
    if (const int reason = reasonFrom(channels.error[0])) {
        reap(pid);
        child.error = qt_error_string(reason);
        return child;
    }
    child.pid = pid;
    child.socket = Channels::take(&channels.socket[0]);
    child.output = Channels::take(&channels.output[0]);
    return child;
}

} // namespace Vorn::Workbench
