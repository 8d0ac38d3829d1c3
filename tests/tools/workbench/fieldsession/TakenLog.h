#ifndef TAKENLOG_H
#define TAKENLOG_H

#include "Session.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Takes what the library logs, at all levels, as a reader of logs would give it.
class TakenLog
{
public:
    /// Whether a log has a line of that logger at that level, 0 for TRACE to 4 for ERROR.
    using Filter = std::function<bool(const std::string &logger, int level)>;

    TakenLog();
    ~TakenLog();
    TakenLog(const TakenLog &) = delete;
    TakenLog &operator=(const TakenLog &) = delete;

    /// What is read from the lines so far.
    std::vector<Vorn::Workbench::SessionEntry> session(const Filter &filter = {}) const;

private:
    struct State;

    const std::unique_ptr<State> m_state;
};

#endif
