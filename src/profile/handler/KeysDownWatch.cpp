#include "KeysDownWatch.h"

#include "vorn.h"

#include <QFile>

#include <linux/input.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace Vorn {

namespace {

// Half of what a person needs for the shortest click.
constexpr int intervalMs = 50;

/// Not the descriptors that the library reads: the request drops the records that wait in them.
bool isAnyKeyDown(int descriptor)
{
    unsigned char keys[KEY_CNT / 8] = {};
    if (::ioctl(descriptor, EVIOCGKEY(sizeof keys), keys) < 0)
        return false;
    return std::any_of(std::begin(keys), std::end(keys), [](unsigned char byte) { return byte; });
}

} // namespace

KeysDownWatch::KeysDownWatch(std::function<void()> onAllUp)
    : m_onAllUp(std::move(onAllUp))
{
    m_timer.setSingleShot(true);
    Vorn::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
}

KeysDownWatch::~KeysDownWatch()
{
    closeNodes();
}

void KeysDownWatch::start(const QStringList &nodes)
{
    closeNodes();
    for (const QString &node : nodes) {
        const int descriptor =
            ::open(QFile::encodeName(node).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (descriptor >= 0)
            m_descriptors.push_back(descriptor);
    }
    m_looksAtNone = 0;
    m_timer.start(0);
}

void KeysDownWatch::closeNodes()
{
    for (const int descriptor : std::exchange(m_descriptors, {}))
        ::close(descriptor);
}

// Two looks, with a turn of the event loop in between: keys that are up may have come up a moment
// ago, and their releases are unread until the loop has passed.
void KeysDownWatch::look()
{
    m_looksAtNone = isAnyDown() ? 0 : m_looksAtNone + 1;
    if (m_looksAtNone < 2) {
        m_timer.start(m_looksAtNone == 0 ? intervalMs : 0);
        return;
    }
    closeNodes();
    m_onAllUp();
}

bool KeysDownWatch::isAnyDown()
{
    return std::any_of(m_descriptors.begin(), m_descriptors.end(), isAnyKeyDown);
}

} // namespace Vorn
