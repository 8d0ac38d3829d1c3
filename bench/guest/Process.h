#ifndef PROCESS_H
#define PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace Vorn::Bench {

/// A program that runs beside this one and is measured from here, so that measuring does not wake
/// it. What it prints is read line by line; its errors go to stderr. It does not outlive this
/// object. Failures are thrown as `std::runtime_error`.
class Process
{
public:
    /// Starts @p command, whose first element is the path of the program.
    explicit Process(const std::vector<std::string> &command);
    ~Process();
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    /// Waits until it prints the line "ready", see announceReady().
    void waitUntilReady();

    /// Waits until it ends, and returns the numbers that it has printed since, one a line.
    std::vector<double> finish(std::chrono::milliseconds limit);

    /// How often its threads have gone to sleep since the start, which is how often they had been
    /// woken.
    long wakeUps() const;

    /// Whether it has the file @p path open.
    bool hasOpen(const std::string &path) const;

    pid_t id() const { return m_id; }

private:
    std::string readLine(std::chrono::steady_clock::time_point end);

    std::string m_name;
    pid_t m_id = -1;
    int m_output = -1;
    std::string m_received;
    bool m_isAtEnd = false;
};

/// The path of this program.
std::string ownPath();

/// Tells the process that has started this one that it may begin.
void announceReady();

} // namespace Vorn::Bench

#endif
