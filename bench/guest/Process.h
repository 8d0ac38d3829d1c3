#ifndef PROCESS_H
#define PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace Vorn::Bench {

/// A child process, measured from outside so that measuring does not wake it. Its output is read
/// line by line; its errors go to stderr. It does not outlive this object. Failures are thrown as
/// `std::runtime_error`.
class Process
{
public:
    /// @param command the path of the program, then its arguments
    explicit Process(const std::vector<std::string> &command);
    ~Process();
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    /// Waits until it calls announceReady().
    void waitUntilReady();

    /// Waits until it ends; returns the numbers it printed since then, one a line.
    std::vector<double> finish(std::chrono::milliseconds limit);

    /// How often its threads have gone to sleep since the start, and so been woken.
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

/// Lets the process that started this one continue, see Process::waitUntilReady().
void announceReady();

} // namespace Vorn::Bench

#endif
