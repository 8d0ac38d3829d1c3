#ifndef VORN_SIM_RECORDQUEUE_H
#define VORN_SIM_RECORDQUEUE_H

#include <QByteArray>

#include <linux/input.h>
#include <sys/types.h>

#include <cstddef>
#include <deque>
#include <vector>

namespace Vorn::Sim {

/// What one descriptor has yet to read: records, and between them raw bytes and errors.
///
/// Keeps its memory, so a reader that keeps up causes no allocations.
class RecordQueue
{
public:
    bool isEmpty() const;

    void append(const input_event &record);
    /// One read returns @p bytes and nothing else.
    void appendBytes(const QByteArray &bytes);
    /// One read fails with @p error.
    void appendError(int error);

    /// One read from a queue that is not empty.
    /// @return the size of as many whole records as fit or of the raw bytes, or a negative `errno`
    ssize_t take(void *buffer, std::size_t size);

    void clear();
    void removeErrors();
    /// Removes the records of @p type, and the packets that this leaves empty.
    void removeType(int type);

private:
    enum class Kind {
        Record,
        Bytes,
        Error,
    };

    struct Item
    {
        // An error is kept in its value.
        input_event record;
        Kind kind;
    };

    void append(const Item &item);
    void dropFront();

    std::vector<Item> m_items;
    std::size_t m_front = 0;
    std::deque<QByteArray> m_bytes;
};

} // namespace Vorn::Sim

#endif
