#include "LibraryKeys.h"

#include "LibraryProbe.h"
#include "LogText.h"
#include "Records.h"

#include <QCoreApplication>
#include <QEvent>

#include <log4cplus/loglevel.h>

namespace Model {

using Vorn::InputProbe;

namespace {

InputEvent::Command command(int number)
{
    return static_cast<InputEvent::Command>(number);
}

QList<int> toList(const std::vector<int> &numbers)
{
    QList<int> list;
    for (const int number : numbers)
        list.append(number);
    return list;
}

void callOnBus(BasicKeyInputHandler &handler, const KeyCall &call)
{
    const auto bus = static_cast<InputEvent::Bus>(call.bus);
    if (call.kind == KeyCall::Kind::RegisterKey)
        handler.registerKey(call.code, bus, command(call.command), call.flag);
    else if (call.kind == KeyCall::Kind::EnableLongPress)
        handler.enableLongPress(call.code, bus, call.flag, toList(call.timeouts));
    else if (call.kind == KeyCall::Kind::RegisterChord)
        handler.registerDoubleKey(call.code, call.second, bus, command(call.command));
    else
        qFatal("this call has no form with a bus");
}

std::int64_t msecsOf(const input_event &event)
{
    return static_cast<std::int64_t>(event.input_event_sec) * 1000 + event.input_event_usec / 1000;
}

} // namespace

void call(BasicKeyInputHandler &handler, const KeyCall &call)
{
    if (call.bus != KeyCall::AnyBus) {
        callOnBus(handler, call);
        return;
    }
    switch (call.kind) {
    case KeyCall::Kind::RegisterKey:
        handler.registerKey(call.code, command(call.command), call.flag);
        break;
    case KeyCall::Kind::DeregisterKey:
        handler.deregisterKey(call.code);
        break;
    case KeyCall::Kind::EnableLongPress:
        handler.enableLongPress(call.code, call.flag, toList(call.timeouts));
        break;
    case KeyCall::Kind::RegisterChord:
        handler.registerDoubleKey(call.code, call.second, command(call.command));
        break;
    case KeyCall::Kind::DeregisterChord:
        handler.deregisterDoubleKey(call.code, call.second);
        break;
    }
}

std::vector<Record> toRecords(const QList<input_event> &records)
{
    std::vector<Record> result;
    for (const input_event &event : records)
        result.push_back({event.type, event.code, event.value, msecsOf(event)});
    return result;
}

QList<input_event> toEvents(const std::vector<Record> &records)
{
    QList<input_event> result;
    for (const Record &one : records)
        result.append(record(one.type, one.code, one.value, one.msecs));
    return result;
}

void observeDetectors(BasicKeyInputHandler &handler, Observer &observer)
{
    QObject::connect(InputProbe::chord(handler), &DoubleKeyDetect::keyDoubleDetect, &handler,
                     [&observer](const QList<input_event> &keys, bool fake) {
                         observer.onKeys(toRecords(keys), fake);
                     });
    QObject::connect(InputProbe::longPress(handler), &LongPressDetect::keyLongPress, &handler,
                     [&observer](int code, int repeat) { observer.onLongPress(code, repeat); });
}

BusAndLog::BusAndLog(Observer &observer)
    : m_log(observer.isLogging() ? log4cplus::TRACE_LOG_LEVEL : log4cplus::OFF_LOG_LEVEL)
    , m_connection(QObject::connect(
          Input::instance(), &Input::inputEvent, [&observer](const InputEvent &event) {
              observer.onPublished(event.command(), event.state(), static_cast<int>(event.bus()));
          }))
{
    m_log.onLine([this, &observer](const LogLine &line) {
        const LogLine copy = line;
        m_log.clear();
        observer.onLine(copy.logger, copy.level, copy.text);
    });
}

BusAndLog::~BusAndLog()
{
    QObject::disconnect(m_connection);
}

LibraryKeys::LibraryKeys(const QString &device, LinuxInputListener *listener, Observer &observer)
    : m_listener(listener)
    , m_handler(std::make_unique<BasicKeyInputHandler>(device))
{
    if (listener)
        m_handler->setListener(listener);
    observeDetectors(*m_handler, observer);
}

LibraryKeys::~LibraryKeys()
{
    // A handler leaves its timer behind; millions of them would not fit into memory.
    const std::unique_ptr<QTimer> timer(InputProbe::timer(*m_handler));
    m_handler.reset();
    // The handler has asked for the end of the listener, which others are to use.
    if (m_listener)
        QCoreApplication::removePostedEvents(m_listener, QEvent::DeferredDelete);
}

void LibraryKeys::process(const std::vector<Record> &records)
{
    m_handler->processEvent(toEvents(records));
}

bool LibraryKeys::isTiming() const
{
    return InputProbe::timer(*m_handler)->isActive();
}

void LibraryKeys::tick()
{
    InputProbe::tick(*m_handler);
}

HandlerState LibraryKeys::state(std::int64_t now)
{
    if (!InputProbe::pending(*m_handler).isEmpty())
        qFatal("nothing ever waits in the second list");
    HandlerState state;
    const auto keyOf = [&](int code) -> HandlerState::Key & {
        return state.keys.at(static_cast<std::size_t>(code - FirstCode));
    };
    const auto &held = InputProbe::held(*m_handler);
    for (auto it = held.cbegin(); it != held.cend(); ++it)
        keyOf(it.key()).held = it.value() ? 2 : 1;
    const auto &holds = InputProbe::holds(*m_handler);
    for (auto it = holds.cbegin(); it != holds.cend(); ++it) {
        keyOf(it.key()).count = it->count;
        keyOf(it.key()).since = it->time.toMSecsSinceEpoch() - now;
    }
    const auto &stages = InputProbe::stages(*m_handler);
    for (auto it = stages.cbegin(); it != stages.cend(); ++it)
        keyOf(it.key()).stage = it.value();
    std::size_t count = 0;
    for (const input_event &event : InputProbe::stored(*m_handler))
        state.stored.at(count++) = {event.code, event.value, msecsOf(event) - now};
    state.isChord = InputProbe::isChord(*m_handler) ? 1 : 0;
    state.isTiming = isTiming() ? 1 : 0;
    return state;
}

void LibraryKeys::setState(const HandlerState &state, std::int64_t now)
{
    auto &held = InputProbe::held(*m_handler);
    auto &holds = InputProbe::holds(*m_handler);
    auto &stages = InputProbe::stages(*m_handler);
    held.clear();
    holds.clear();
    stages.clear();
    for (int i = 0; i < KeyCount; ++i) {
        const HandlerState::Key &key = state.keys[static_cast<std::size_t>(i)];
        const int code = FirstCode + i;
        if (key.held != 0)
            held.insert(code, key.held == 2);
        if (key.count != 0) {
            holds.insert(
                code,
                {static_cast<int>(key.count), QDateTime::fromMSecsSinceEpoch(now + key.since)});
        }
        if (key.stage >= 0)
            stages.insert(code, static_cast<int>(key.stage));
    }
    auto &stored = InputProbe::stored(*m_handler);
    stored.clear();
    for (const HandlerState::Stored &event : state.stored) {
        if (event.code != 0) {
            stored.append(record(KeyType, static_cast<int>(event.code),
                                 static_cast<int>(event.value), now + event.msecs));
        }
    }
    InputProbe::isChord(*m_handler) = state.isChord != 0;
    QTimer *timer = InputProbe::timer(*m_handler);
    if (state.isTiming == 0)
        timer->stop();
    else if (!timer->isActive())
        timer->start(50);
}

} // namespace Model
