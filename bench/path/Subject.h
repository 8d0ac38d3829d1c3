#ifndef SUBJECT_H
#define SUBJECT_H

#include "Counters.h"

#include <linux/input.h>
#include <sys/types.h>

#include <ctime>
#include <string>
#include <vector>

/// A pipe in the place of a node.
class Node
{
public:
    Node();

    int readEnd() const { return m_readEnd; }
    void write(const std::vector<input_event> &burst) const;
    /// Whether its reader has taken everything.
    bool isRead() const;

private:
    int m_readEnd;
    int m_writeEnd;
};

/// How a subject is started.
struct Launch
{
    std::vector<std::string> command;
    std::vector<std::string> preload;
    std::vector<std::string> environment; ///< NAME=VALUE
};

/// The measured process. It does not outlive this object. Failures are thrown as
/// `std::runtime_error`.
class Subject
{
public:
    Subject(const Launch &launch, const std::vector<Node> &nodes);
    ~Subject();
    Subject(const Subject &) = delete;
    Subject &operator=(const Subject &) = delete;

    const Counters &counters() const { return *m_counters; }

    /// CPU time in nanoseconds.
    long long processorTime() const;
    bool isAsleep() const;
    /// How often it has gone to sleep of its own accord.
    long sleeps() const;

    /// Waits until its start is complete: no CPU time used for a while.
    void waitUntilReady() const;
    /// Waits until it has read everything and, if @p mustSleep, sleeps.
    void waitUntilDone(const std::vector<Node> &nodes, bool mustSleep = true) const;

private:
    [[noreturn]] void become(const Launch &launch, const std::vector<Node> &nodes) const;

    pid_t m_pid = -1;
    int m_page = -1;
    int m_status = -1;
    clockid_t m_clock = 0;
    Counters *m_counters = nullptr;
};

#endif
