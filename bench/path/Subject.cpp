#include "Subject.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// A subject that needs longer is stuck.
constexpr auto patience = 60s;

[[noreturn]] void failWith(const char *what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

Node::Node()
{
    std::array<int, 2> ends;
    if (pipe2(ends.data(), O_CLOEXEC) < 0)
        failWith("pipe");
    m_readEnd = ends[0];
    m_writeEnd = ends[1];
}

void Node::write(const std::vector<input_event> &burst) const
{
    const std::size_t size = burst.size() * sizeof(burst[0]);
    if (::write(m_writeEnd, burst.data(), size) != static_cast<ssize_t>(size))
        failWith("write");
}

bool Node::isRead() const
{
    int bytes = 0;
    if (ioctl(m_writeEnd, FIONREAD, &bytes) < 0)
        failWith("FIONREAD");
    return bytes == 0;
}

Subject::Subject(const Launch &launch, const std::vector<Node> &nodes)
{
    m_page = memfd_create("counters", 0);
    if (m_page < 0 || ftruncate(m_page, sizeof(Counters)) < 0)
        failWith("memfd_create");
    void *page = mmap(nullptr, sizeof(Counters), PROT_READ | PROT_WRITE, MAP_SHARED, m_page, 0);
    if (page == MAP_FAILED)
        failWith("mmap");
    m_counters = static_cast<Counters *>(page);

    m_pid = fork();
    if (m_pid < 0)
        failWith("fork");
    if (m_pid == 0)
        become(launch, nodes);
    if (clock_getcpuclockid(m_pid, &m_clock) != 0)
        throw std::runtime_error("the subject has no clock");
    const std::string status = "/proc/" + std::to_string(m_pid) + "/stat";
    m_status = open(status.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_status < 0)
        failWith(status.c_str());
}

Subject::~Subject()
{
    kill(m_pid, SIGTERM);
    waitpid(m_pid, nullptr, 0);
}

long long Subject::processorTime() const
{
    timespec time;
    if (clock_gettime(m_clock, &time) < 0)
        failWith("the subject's clock");
    return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

bool Subject::isAsleep() const
{
    // "PID (NAME) STATE …"
    std::array<char, 256> text;
    const ssize_t size = pread(m_status, text.data(), text.size() - 1, 0);
    if (size <= 0)
        throw std::runtime_error("the subject has ended");
    text[static_cast<std::size_t>(size)] = '\0';
    const char *state = std::strrchr(text.data(), ')');
    if (!state || state[2] == 'Z')
        throw std::runtime_error("the subject has ended");
    return state[2] == 'S';
}

long Subject::sleeps() const
{
    const std::string path = "/proc/" + std::to_string(m_pid) + "/status";
    FILE *file = std::fopen(path.c_str(), "re");
    if (!file)
        failWith(path.c_str());
    std::array<char, 256> line;
    long count = -1;
    while (std::fgets(line.data(), line.size(), file))
        std::sscanf(line.data(), "voluntary_ctxt_switches: %ld", &count);
    std::fclose(file);
    return count;
}

void Subject::waitUntilReady() const
{
    const auto end = Clock::now() + patience;
    long long before = -1;
    int quiet = 0;
    while (quiet < 10) {
        std::this_thread::sleep_for(20ms);
        const long long time = processorTime();
        quiet = time == before && isAsleep() ? quiet + 1 : 0;
        before = time;
        if (Clock::now() > end)
            throw std::runtime_error("the subject does not become idle after its start");
    }
}

void Subject::waitUntilDone(const std::vector<Node> &nodes, bool mustSleep) const
{
    const auto end = Clock::now() + patience;
    for (;;) {
        bool isRead = true;
        for (const Node &node : nodes)
            isRead = isRead && node.isRead();
        if (isRead && (!mustSleep || isAsleep()))
            return;
        if (Clock::now() > end)
            throw std::runtime_error("the subject does not read");
    }
}

void Subject::become(const Launch &launch, const std::vector<Node> &nodes) const
{
    std::string ends;
    for (const Node &node : nodes) {
        fcntl(node.readEnd(), F_SETFD, 0);
        ends += (ends.empty() ? "" : ",") + std::to_string(node.readEnd());
    }
    setenv(nodesVariable, ends.c_str(), 1);
    setenv(countersVariable, std::to_string(m_page).c_str(), 1);
    std::string preload;
    for (const std::string &library : launch.preload)
        preload += (preload.empty() ? "" : ":") + library;
    setenv("LD_PRELOAD", preload.c_str(), 1);
    for (const std::string &variable : launch.environment) {
        const std::size_t sign = variable.find('=');
        setenv(variable.substr(0, sign).c_str(), variable.substr(sign + 1).c_str(), 1);
    }
    // The output of a subject is of no interest.
    const int null = open("/dev/null", O_RDWR);
    dup2(null, STDIN_FILENO);
    dup2(null, STDOUT_FILENO);
    std::vector<char *> arguments;
    for (const std::string &argument : launch.command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    std::perror(arguments[0]);
    _exit(127);
}
