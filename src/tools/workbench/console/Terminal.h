#ifndef VORN_WORKBENCH_TERMINAL_H
#define VORN_WORKBENCH_TERMINAL_H

#include <QObject>
#include <QString>

#include <functional>

namespace Vorn::Workbench {

/// When output is coloured.
enum class Colour { Auto, Always, Never };

/// Whether what goes to @p descriptor (1 or 2) is to be coloured. `Auto`: on a terminal, unless
/// NO_COLOR is set or TERM is "dumb".
bool isColoured(Colour colour, int descriptor);

/// Whether a descriptor is a terminal.
bool isTerminal(int descriptor);

/// A line on a terminal that is overwritten in place to show how far long work is, on stderr; does
/// nothing if that is no terminal. Goes with the object.
class Progress
{
public:
    Progress();
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// Whether show() would do anything: there is a terminal, and so much has been done since the
    /// start or the last time that a person would like to know.
    bool isDue() const;
    /// Shows @p text, if that is due.
    void show(const QString &text);
    /// Removes the line, for other output.
    void clear();

private:
    const bool m_isShown;
    qint64 m_lastTime;
    bool m_isDrawn = false;
};

/// Catches SIGINT, SIGTERM and SIGHUP while it is alive, so that work ends cleanly: the first one
/// sets a flag and, in an event loop, calls back; one that comes repetitionMs later or more ends
/// the process. So it stays after a signal, also when it is destroyed, since the process ends then.
class Interruption : public QObject
{
public:
    static constexpr int repetitionMs = 500;

    explicit Interruption(std::function<void()> callback = {});
    ~Interruption() override;

    /// Whether a signal has come.
    static bool isRequested();
};

/// Single characters from the standard input while it is alive; on a terminal without waiting for
/// Enter and without echo. On one thread, one at a time.
class Keyboard : public QObject
{
public:
    explicit Keyboard(std::function<void(char)> onKey);
    ~Keyboard() override;
};

} // namespace Vorn::Workbench

#endif
