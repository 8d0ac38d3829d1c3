#ifndef MODEL_LIBRARYKEYS_H
#define MODEL_LIBRARYKEYS_H

#include "BasicInputHandler.h"
#include "KeyCall.h"
#include "LogRecorder.h"
#include "Observation.h"

#include <array>
#include <memory>
#include <vector>

namespace Model {

/// The codes of the keys that sequences are made of.
constexpr int FirstCode = 30;
constexpr int KeyCount = 3;

/// The state of a handler that no registration is part of, relative to a time; without padding.
struct HandlerState
{
    struct Key
    {
        std::int64_t held = 0; ///< 0 no, 1 down, 2 after a long press
        std::int64_t count = 0; ///< 0 if it is not timed
        std::int64_t since = 0;
        std::int64_t stage = -1;
    };

    struct Stored
    {
        std::int64_t code = 0;
        std::int64_t value = 0;
        std::int64_t msecs = 0;
    };

    std::array<Key, KeyCount> keys;
    std::array<Stored, KeyCount> stored;
    std::int64_t isChord = 0;
    std::int64_t isTiming = 0;
};

void call(BasicKeyInputHandler &handler, const KeyCall &call);
std::vector<Record> toRecords(const QList<input_event> &records);
QList<input_event> toEvents(const std::vector<Record> &records);

/// Tells an observer what the signals of a handler's detectors carry.
void observeDetectors(BasicKeyInputHandler &handler, Observer &observer);

/// Tells an observer what is published and logged while it exists.
class BusAndLog
{
public:
    explicit BusAndLog(Observer &observer);
    ~BusAndLog();
    BusAndLog(const BusAndLog &) = delete;
    BusAndLog &operator=(const BusAndLog &) = delete;

private:
    LogRecorder m_log;
    QMetaObject::Connection m_connection;
};

/// A handler of the library, with all that can be seen of it.
class LibraryKeys
{
public:
    /// @param listener taken away from the handler before it is destroyed; may be null
    LibraryKeys(const QString &device, LinuxInputListener *listener, Observer &observer);
    ~LibraryKeys();
    LibraryKeys(const LibraryKeys &) = delete;
    LibraryKeys &operator=(const LibraryKeys &) = delete;

    BasicKeyInputHandler &handler() { return *m_handler; }
    void process(const std::vector<Record> &records);
    bool isTiming() const;
    void tick();

    HandlerState state(std::int64_t now);
    void setState(const HandlerState &state, std::int64_t now);

private:
    LinuxInputListener *m_listener;
    std::unique_ptr<BasicKeyInputHandler> m_handler;
};

} // namespace Model

#endif
