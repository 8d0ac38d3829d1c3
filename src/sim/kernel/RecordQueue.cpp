#include "RecordQueue.h"

#include <algorithm>
#include <cstring>

namespace Vorn::Sim {

bool RecordQueue::isEmpty() const
{
    return m_front == m_items.size();
}

void RecordQueue::append(const input_event &record)
{
    append(Item{record, Kind::Record});
}

void RecordQueue::appendBytes(const QByteArray &bytes)
{
    m_bytes.push_back(bytes);
    append(Item{input_event(), Kind::Bytes});
}

void RecordQueue::appendError(int error)
{
    Item item = {input_event(), Kind::Error};
    item.record.value = error;
    append(item);
}

// A queue and the reads that empty it, with room for two records each:
//
//   front                                                  end
//   ├────────┬────────┬────────┬──────────┬───────┬────────┤
//   │ record │ record │ record │ 40 bytes │ EIO   │ record │
//   ├────────┴────────┼────────┼──────────┼───────┼────────┤
//   │ 2 records       │ 1      │ 40 bytes │ -EIO  │ 1      │
ssize_t RecordQueue::take(void *buffer, std::size_t size)
{
    switch (m_items[m_front].kind) {
    case Kind::Error: {
        const int error = m_items[m_front].record.value;
        dropFront();
        return -error;
    }
    case Kind::Bytes: {
        const QByteArray bytes = m_bytes.front();
        m_bytes.pop_front();
        dropFront();
        const std::size_t count = std::min(size, static_cast<std::size_t>(bytes.size()));
        if (count > 0)
            std::memcpy(buffer, bytes.constData(), count);
        return static_cast<ssize_t>(count);
    }
    case Kind::Record:
        break;
    }

    char *target = static_cast<char *>(buffer);
    std::size_t done = 0;
    while (!isEmpty() && m_items[m_front].kind == Kind::Record
           && size - done >= sizeof(input_event)) {
        std::memcpy(target + done, &m_items[m_front].record, sizeof(input_event));
        done += sizeof(input_event);
        dropFront();
    }
    return static_cast<ssize_t>(done);
}

void RecordQueue::clear()
{
    m_items.clear();
    m_front = 0;
    m_bytes.clear();
}

void RecordQueue::removeErrors()
{
    const auto isError = [](const Item &item) { return item.kind == Kind::Error; };
    const auto front = m_items.begin() + static_cast<std::ptrdiff_t>(m_front);
    m_items.erase(std::remove_if(front, m_items.end(), isError), m_items.end());
}

void RecordQueue::removeType(int type)
{
    std::size_t kept = m_front;
    // A leading report stays: it may end a packet whose start was read already.
    bool isPacketEmpty = false;
    for (std::size_t i = m_front; i < m_items.size(); ++i) {
        const Item item = m_items[i];
        const bool isRecord = item.kind == Kind::Record;
        const bool isReport =
            isRecord && item.record.type == EV_SYN && item.record.code == SYN_REPORT;
        if ((isRecord && item.record.type == type) || (isReport && isPacketEmpty))
            continue;
        m_items[kept++] = item;
        isPacketEmpty = isReport;
    }
    m_items.resize(kept);
}

void RecordQueue::append(const Item &item)
{
    // For a reader that always lags a little, the queue never gets empty. Close the gap at the
    // front before it makes the memory grow.
    if (m_items.size() == m_items.capacity() && m_front > m_items.size() / 2) {
        m_items.erase(m_items.begin(), m_items.begin() + static_cast<std::ptrdiff_t>(m_front));
        m_front = 0;
    }
    m_items.push_back(item);
}

void RecordQueue::dropFront()
{
    if (++m_front == m_items.size()) {
        m_items.clear();
        m_front = 0;
    }
}

} // namespace Vorn::Sim
