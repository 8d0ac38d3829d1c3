#ifndef VORN_PROFILE_KEYSDOWNWATCH_H
#define VORN_PROFILE_KEYSDOWNWATCH_H

#include <QStringList>
#include <QTimer>

#include <functional>
#include <vector>

namespace Vorn {

/// Waits until no key of some devices is down, and everything that was sent before has been read
/// by whoever else reads them on this thread.
class KeysDownWatch
{
public:
    /// @param onAllUp is called once for each wait, from the event loop
    explicit KeysDownWatch(std::function<void()> onAllUp);
    ~KeysDownWatch();
    KeysDownWatch(const KeysDownWatch &) = delete;
    KeysDownWatch &operator=(const KeysDownWatch &) = delete;

    /// Waits for these nodes, and no longer for others. One that cannot be opened is not waited
    /// for: its keys are not read either.
    void start(const QStringList &nodes);

private:
    void look();
    void closeNodes();
    bool isAnyDown();

    const std::function<void()> m_onAllUp;
    QTimer m_timer;
    std::vector<int> m_descriptors;
    int m_looksAtNone = 0; ///< in a row
};

} // namespace Vorn

#endif
