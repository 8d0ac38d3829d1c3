#include "Progress.h"

#include "Output.h"
#include "Quoting.h"
#include "Terminal.h"
#include "TerminalText.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <ctime>
#include <utility>

namespace Vorn::Workbench {

namespace {

constexpr qint64 progressIntervalMs = 100;

/// Runs on while the process's other clocks are virtual.
qint64 processorTimeMs()
{
    return static_cast<qint64>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

} // namespace

Progress::Progress()
    : m_isShown(isTerminal(STDERR_FILENO) && understandsSequences())
    , m_lastTime(processorTimeMs())
{ }

Progress::~Progress()
{
    clear();
}

bool Progress::isDue() const
{
    return m_isShown && processorTimeMs() - m_lastTime >= progressIntervalMs;
}

void Progress::show(const QString &text)
{
    if (!isDue())
        return;
    m_lastTime = processorTimeMs();
    m_isDrawn = true;
    winsize size = {};
    const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
    const int width = isKnown ? size.ws_col - 1 : 79;
    // A longer line would wrap, and \r does not return to the start of a wrapped line.
    printText(stderr, QLatin1String("\r\033[K") + elided(printable(text), width));
}

void Progress::clear()
{
    if (std::exchange(m_isDrawn, false))
        print(stderr, "\r\033[K");
}

} // namespace Vorn::Workbench
