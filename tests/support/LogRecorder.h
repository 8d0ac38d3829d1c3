#ifndef LOGRECORDER_H
#define LOGRECORDER_H

#include <log4cplus/loglevel.h>

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

/// One message as an appender sees it.
struct LogLine
{
    std::string logger;
    int level = 0;
    std::string text;
    std::string file;
    std::string function;

    bool operator==(const LogLine &other) const;
};

std::ostream &operator<<(std::ostream &stream, const LogLine &line);

/// Records every message of every logger during its lifetime, from TRACE up by default.
class LogRecorder
{
public:
    explicit LogRecorder(int level = log4cplus::TRACE_LOG_LEVEL);
    ~LogRecorder();
    LogRecorder(const LogRecorder &) = delete;
    LogRecorder &operator=(const LogRecorder &) = delete;

    const std::vector<LogLine> &lines() const;
    /// The lines at @p level.
    std::vector<LogLine> lines(int level) const;
    /// The texts of all lines, or of those at @p level.
    std::vector<std::string> texts() const;
    std::vector<std::string> texts(int level) const;
    void clear();

    /// Sets a callback for each message as it is logged.
    void onLine(std::function<void(const LogLine &)> callback);

    struct State;

private:
    std::shared_ptr<State> m_state;
    int m_oldLevel;
};

#endif
