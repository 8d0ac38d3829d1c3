#include "LongPressTiming.h"

#include <utility>

namespace Vorn::Workbench {

/*
 *  A key that is held, with a long press that repeats:
 *
 *  statements   due 700        due 1300           ended
 *  time         0        700   740         1300   1320
 *               ├──────────┼───┼─────────────┼────┤
 *  timed        ├─────────────────────────────────┤
 *  due                   700               1300
 *
 *  A due time is pending until the next statement about its key. If it has been reached by then, it
 *  is reported; if not, it was put off or called off.
 */

LongPressTiming::LongPressTiming(Receiver receiver)
    : m_receiver(std::move(receiver))
{ }

void LongPressTiming::start(const QString &device, int code, qint64 now, qint64 due)
{
    const Key key(device, code);
    const auto known = m_timed.find(key);
    if (known == m_timed.end()) {
        m_timed.insert(key, {now, due, now, false});
        return;
    }
    reach(key, &*known, now);
    if (due != known->due)
        *known = {known->from, due, now, false};
}

void LongPressTiming::end(const QString &device, int code, qint64 now)
{
    const Key key(device, code);
    const auto known = m_timed.find(key);
    if (known == m_timed.end())
        return;
    reach(key, &*known, now);
    m_receiver.timed(device, code, known->from, now);
    m_timed.erase(known);
}

std::optional<qint64> LongPressTiming::stated(const QString &device, int code, qint64 due) const
{
    const auto known = m_timed.constFind(Key(device, code));
    if (known == m_timed.constEnd() || known->due != due)
        return std::nullopt;
    return known->stated;
}

void LongPressTiming::endAll(const QString &device, qint64 now)
{
    const QList<Key> keys = m_timed.keys();
    for (const Key &key : keys) {
        if (key.first == device)
            end(device, key.second, now);
    }
}

void LongPressTiming::finish(qint64 end)
{
    auto timed = std::exchange(m_timed, {});
    for (auto it = timed.begin(); it != timed.end(); ++it) {
        reach(it.key(), &*it, end);
        m_receiver.timed(it.key().first, it.key().second, it->from, end);
    }
}

void LongPressTiming::reach(const Key &key, Timed *timed, qint64 now) const
{
    if (timed->due > now || timed->isReported)
        return;
    timed->isReported = true;
    m_receiver.due(key.first, key.second, timed->due);
}

} // namespace Vorn::Workbench
