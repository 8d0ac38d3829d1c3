#include "Process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace Vorn::Bench {

namespace {

using Clock = std::chrono::steady_clock;

// Reached only on failure: a guest that loads programs from a shared folder is slow.
constexpr std::chrono::seconds startLimit(60);

const char *const readyLine = "ready";

std::filesystem::path procFolder(pid_t id)
{
    return "/proc/" + std::to_string(id);
}

} // namespace

Process::Process(const std::vector<std::string> &command)
    : m_name(command.front())
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    m_output = ends[0];

    std::vector<char *> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    const int error =
        ::posix_spawn(&m_id, m_name.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (error != 0) {
        ::close(m_output);
        throw std::system_error(error, std::generic_category(), "cannot start " + m_name);
    }
}

Process::~Process()
{
    if (m_id != -1) {
        ::kill(m_id, SIGKILL);
        ::waitpid(m_id, nullptr, 0);
    }
    ::close(m_output);
}

void Process::waitUntilReady()
{
    const std::string line = readLine(Clock::now() + startLimit);
    if (line != readyLine)
        throw std::runtime_error(m_name + " did not become ready");
}

std::vector<double> Process::finish(std::chrono::milliseconds limit)
{
    const auto end = Clock::now() + limit;
    std::vector<double> numbers;
    for (std::string line = readLine(end); !m_isAtEnd; line = readLine(end))
        numbers.push_back(std::stod(line));
    int status = 0;
    ::waitpid(m_id, &status, 0);
    m_id = -1;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(m_name + " failed");
    return numbers;
}

long Process::wakeUps() const
{
    constexpr char label[] = "voluntary_ctxt_switches:";
    long sum = 0;
    for (const auto &thread : std::filesystem::directory_iterator(procFolder(m_id) / "task")) {
        std::ifstream status(thread.path() / "status");
        std::string line;
        while (std::getline(status, line)) {
            if (line.rfind(label, 0) == 0)
                sum += std::stol(line.substr(sizeof(label) - 1));
        }
    }
    return sum;
}

bool Process::hasOpen(const std::string &path) const
{
    const std::filesystem::directory_iterator files(procFolder(m_id) / "fd");
    return std::any_of(begin(files), end(files), [&path](const auto &file) {
        std::error_code closedMeanwhile;
        return std::filesystem::read_symlink(file.path(), closedMeanwhile) == path;
    });
}

std::string Process::readLine(Clock::time_point end)
{
    std::size_t length;
    while ((length = m_received.find('\n')) == std::string::npos) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd output = {m_output, POLLIN, 0};
        if (left < 0 || ::poll(&output, 1, static_cast<int>(left)) == 0)
            throw std::runtime_error(m_name + " does not respond");
        char buffer[4096];
        const ssize_t size = ::read(m_output, buffer, sizeof(buffer));
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0) {
            m_isAtEnd = true;
            return {};
        }
        m_received.append(buffer, static_cast<std::size_t>(size));
    }
    std::string line = m_received.substr(0, length);
    m_received.erase(0, length + 1);
    return line;
}

std::string ownPath()
{
    return std::filesystem::read_symlink("/proc/self/exe");
}

void announceReady()
{
    std::puts(readyLine);
    std::fflush(stdout);
}

} // namespace Vorn::Bench
