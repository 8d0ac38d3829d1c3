// Starts a subject, feeds it records, and prints what they cost.
//
//   --pace read   subject  read 1 ── work ── read 2 ── work ──    finds burst 2 without sleeping
//                 feeder        └ write 2         └ write 3
//   --pace sleep  subject  read 1 ── work ── sleep ── read 2 ──   is woken by every burst, as by a
//                 feeder                          └ write 2       key press
//
// Measured is the subject's CPU time, from its first burst after the warm-up until it sleeps after
// the last one.

#include "Counters.h"

#include <fcntl.h>
#include <linux/input.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <iostream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int firstKey = KEY_1;
// As many as one read of the library takes. A node returns only whole records, but a pipe would
// split the last one of a longer burst.
constexpr int recordsPerRead = 1024 / sizeof(input_event);
// A subject that needs longer is stuck.
constexpr auto patience = 60s;

[[noreturn]] void failWith(const char *what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

struct Options
{
    std::string stream = "clicks";
    int burst = 42;
    long records = 100'000;
    long warmUp = 2'000;
    int keys = 8;
    int devices = 1;
    std::string pace = "sleep";
    double seconds = 2;
    std::vector<std::string> preload;
    std::vector<std::string> environment;
    std::vector<std::string> command;
};

/// The endless stream of records of one device.
class Stream
{
public:
    Stream(const std::string &name, int keyCount)
    {
        const auto add = [this](int type, int code, int value) {
            m_period.push_back(record(type, code, value));
            m_period.push_back(record(EV_SYN, SYN_REPORT, 0));
        };
        if (name == "clicks") {
            for (int key = firstKey; key < firstKey + keyCount; ++key) {
                add(EV_KEY, key, 1);
                add(EV_KEY, key, 0);
            }
        } else if (name == "chords") {
            for (int key = firstKey; key < firstKey + keyCount; key += 2) {
                for (const int value : {1, 0}) {
                    add(EV_KEY, key, value);
                    add(EV_KEY, key + 1, value);
                }
            }
        } else if (name == "held") {
            // The auto-repeat of a driver, without the press before it.
            add(EV_KEY, firstKey, 2);
        } else {
            add(EV_SW, SW_LINEIN_INSERT, 1);
            add(EV_SW, SW_LINEIN_INSERT, 0);
        }
    }

    /// Fills @p burst with the next records, with the current time as their timestamp.
    void fill(std::vector<input_event> &burst)
    {
        timeval now;
        gettimeofday(&now, nullptr);
        for (input_event &next : burst) {
            next = m_period[m_position];
            next.time = now;
            m_position = (m_position + 1) % m_period.size();
        }
    }

    static input_event record(int type, int code, int value)
    {
        input_event result = {};
        result.type = static_cast<decltype(result.type)>(type);
        result.code = static_cast<decltype(result.code)>(code);
        result.value = value;
        return result;
    }

private:
    std::vector<input_event> m_period;
    std::size_t m_position = 0;
};

/// A pipe in the place of a node.
class Node
{
public:
    Node()
    {
        std::array<int, 2> ends;
        if (pipe2(ends.data(), O_CLOEXEC) < 0)
            failWith("pipe");
        readEnd = ends[0];
        writeEnd = ends[1];
    }

    void write(const std::vector<input_event> &burst) const
    {
        const std::size_t size = burst.size() * sizeof(burst[0]);
        if (::write(writeEnd, burst.data(), size) != static_cast<ssize_t>(size))
            failWith("write");
    }

    bool isRead() const
    {
        int bytes = 0;
        if (ioctl(writeEnd, FIONREAD, &bytes) < 0)
            failWith("FIONREAD");
        return bytes == 0;
    }

    int readEnd;
    int writeEnd;
};

/// The measured process. It does not outlive this object.
class Subject
{
public:
    Subject(const Options &options, const std::vector<Node> &nodes)
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
            become(options, nodes);
        if (clock_getcpuclockid(m_pid, &m_clock) != 0)
            throw std::runtime_error("the subject has no clock");
        const std::string status = "/proc/" + std::to_string(m_pid) + "/stat";
        m_status = open(status.c_str(), O_RDONLY | O_CLOEXEC);
        if (m_status < 0)
            failWith(status.c_str());
    }

    ~Subject()
    {
        kill(m_pid, SIGTERM);
        waitpid(m_pid, nullptr, 0);
    }
    Subject(const Subject &) = delete;
    Subject &operator=(const Subject &) = delete;

    const Counters &counters() const { return *m_counters; }

    long long processorTime() const
    {
        timespec time;
        if (clock_gettime(m_clock, &time) < 0)
            failWith("the subject's clock");
        return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
    }

    bool isAsleep() const
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

    /// How often it has gone to sleep of its own accord.
    long sleeps() const
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

    /// Waits until its start is complete: no CPU time used for a while.
    void waitUntilReady() const
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

    /// Waits until it has read everything and, if @p mustSleep, sleeps.
    void waitUntilDone(const std::vector<Node> &nodes, bool mustSleep = true) const
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

private:
    [[noreturn]] void become(const Options &options, const std::vector<Node> &nodes) const
    {
        std::string ends;
        for (const Node &node : nodes) {
            fcntl(node.readEnd, F_SETFD, 0);
            ends += (ends.empty() ? "" : ",") + std::to_string(node.readEnd);
        }
        setenv(nodesVariable, ends.c_str(), 1);
        setenv(countersVariable, std::to_string(m_page).c_str(), 1);
        std::string preload;
        for (const std::string &library : options.preload)
            preload += (preload.empty() ? "" : ":") + library;
        setenv("LD_PRELOAD", preload.c_str(), 1);
        for (const std::string &variable : options.environment) {
            const std::size_t sign = variable.find('=');
            setenv(variable.substr(0, sign).c_str(), variable.substr(sign + 1).c_str(), 1);
        }
        // The output of a subject is of no interest.
        const int null = open("/dev/null", O_RDWR);
        dup2(null, STDIN_FILENO);
        dup2(null, STDOUT_FILENO);
        std::vector<char *> arguments;
        for (const std::string &argument : options.command)
            arguments.push_back(const_cast<char *>(argument.c_str()));
        arguments.push_back(nullptr);
        execvp(arguments[0], arguments.data());
        std::perror(arguments[0]);
        _exit(127);
    }

    pid_t m_pid = -1;
    int m_page = -1;
    int m_status = -1;
    clockid_t m_clock = 0;
    Counters *m_counters = nullptr;
};

void feed(const Options &options, const std::vector<Node> &nodes, std::vector<Stream> &streams,
          const Subject &subject, long records)
{
    std::vector<input_event> burst(static_cast<std::size_t>(options.burst));
    std::size_t device = 0;
    for (long fed = 0; fed < records; fed += options.burst) {
        streams[device].fill(burst);
        nodes[device].write(burst);
        subject.waitUntilDone(nodes, options.pace == "sleep");
        device = (device + 1) % nodes.size();
    }
    subject.waitUntilDone(nodes);
}

struct State
{
    explicit State(const Subject &subject)
        : sleeps(subject.sleeps())
        , allocations(subject.counters().allocations)
        , bytes(subject.counters().bytes)
        , results(subject.counters().results)
        , time(subject.processorTime())
    { }

    long sleeps;
    std::uint64_t allocations;
    std::uint64_t bytes;
    std::uint64_t results;
    long long time;
};

void print(const State &before, const State &after, long records, long bursts)
{
    std::cout << "{\"records\": " << records << ", \"bursts\": " << bursts
              << ", \"nanoseconds\": " << after.time - before.time
              << ", \"allocations\": " << after.allocations - before.allocations
              << ", \"bytes\": " << after.bytes - before.bytes
              << ", \"results\": " << after.results - before.results
              << ", \"sleeps\": " << after.sleeps - before.sleeps << "}\n";
}

void run(const Options &options)
{
    std::vector<Node> nodes(static_cast<std::size_t>(options.devices));
    std::vector<Stream> streams(
        nodes.size(), Stream(options.stream == "hold" ? "held" : options.stream, options.keys));
    const Subject subject(options, nodes);
    subject.waitUntilReady();

    if (options.stream == "hold") {
        // A key held down for some time, without auto-repeat.
        std::vector<input_event> press = {Stream::record(EV_KEY, firstKey, 1),
                                          Stream::record(EV_SYN, SYN_REPORT, 0)};
        gettimeofday(&press[0].time, nullptr);
        press[1].time = press[0].time;
        nodes[0].write(press);
        std::this_thread::sleep_for(1s);
        const State before(subject);
        std::this_thread::sleep_for(std::chrono::duration<double>(options.seconds));
        print(before, State(subject), 0, 0);
        return;
    }

    feed(options, nodes, streams, subject, options.warmUp);
    const State before(subject);
    const long bursts = (options.records + options.burst - 1) / options.burst;
    feed(options, nodes, streams, subject, bursts * options.burst);
    print(before, State(subject), bursts * options.burst, bursts);
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    CLI::App app("Starts COMMAND with pipes in the place of /dev/input/event0 …, feeds it records, "
                 "and prints what they cost as a line of JSON.");
    app.add_option("--stream", options.stream, "records to feed; hold is one key held down")
        ->check(CLI::IsMember({"clicks", "chords", "held", "switches", "hold"}))
        ->capture_default_str();
    app.add_option("--burst", options.burst, "records written at a time")
        ->check(CLI::Range(1, recordsPerRead))
        ->capture_default_str();
    app.add_option("--records", options.records, "records in total")->capture_default_str();
    app.add_option("--warm-up", options.warmUp, "records fed before those and not counted")
        ->capture_default_str();
    app.add_option("--keys", options.keys, "number of keys that are pressed in turn")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    app.add_option("--devices", options.devices, "nodes that get the bursts in turn")
        ->check(CLI::Range(1, 10))
        ->capture_default_str();
    app.add_option("--pace", options.pace,
                   "what a burst waits for: the previous one read, or its reader asleep")
        ->check(CLI::IsMember({"read", "sleep"}))
        ->capture_default_str();
    app.add_option("--seconds", options.seconds, "how long the key is held")->capture_default_str();
    app.add_option("--preload", options.preload, "library to preload into the subject; repeatable")
        ->allow_extra_args(false);
    app.add_option("--env", options.environment,
                   "NAME=VALUE for the subject's environment; repeatable")
        ->allow_extra_args(false);
    app.add_option("command", options.command, "the subject and its arguments")->required();
    CLI11_PARSE(app, argc, argv);
    try {
        run(options);
    } catch (const std::exception &error) {
        std::cerr << "vorn_bench_feeder: " << options.command.front() << ": " << error.what()
                  << '\n';
        return 1;
    }
    return 0;
}
