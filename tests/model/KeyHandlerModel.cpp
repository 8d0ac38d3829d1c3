#include "KeyHandlerModel.h"

#include "LogText.h"

namespace Model {

namespace {

constexpr int Pressed = 1;
constexpr int Released = 2;
constexpr int LongPressed = 3;

void log(Observer &observer, int level, const std::string &line)
{
    if (observer.isLogging())
        observer.onLine("BasicInputHandler", level, line);
}

std::string number(int value)
{
    return std::to_string(value);
}

} // namespace

KeyHandlerModel::KeyHandlerModel(std::string device)
    : m_device(std::move(device))
{ }

void KeyHandlerModel::call(const KeyCall &call, Observer &observer)
{
    if (call.bus != KeyCall::AnyBus && call.bus != m_bus)
        return;
    const bool isBusForm = call.bus != KeyCall::AnyBus;
    switch (call.kind) {
    case KeyCall::Kind::RegisterKey:
        if (isBusForm) {
            m_keys.erase(call.code);
            m_immediate.erase(call.code);
        }
        registerKey(call.code, call.command, call.flag, observer);
        break;
    case KeyCall::Kind::DeregisterKey:
        deregisterKey(call.code, observer);
        break;
    case KeyCall::Kind::EnableLongPress:
        m_longPress.enable(call.code, call.flag, call.timeouts);
        break;
    case KeyCall::Kind::RegisterChord:
        if (isBusForm)
            m_chords.erase({call.code, call.second});
        registerChord(call.code, call.second, call.command, observer);
        break;
    case KeyCall::Kind::DeregisterChord:
        deregisterChord(call.code, call.second, observer);
        break;
    }
}

bool KeyHandlerModel::isFatal(const KeyCall &call) const
{
    const bool deregisters = call.kind == KeyCall::Kind::DeregisterKey
        || (call.kind == KeyCall::Kind::RegisterKey && call.bus == KeyCall::AnyBus);
    return deregisters && m_keys.count(call.code) > 0 && m_longPress.isHeld(call.code);
}

void KeyHandlerModel::registerKey(int code, int command, bool immediate, Observer &observer)
{
    if (m_keys.count(code) > 0) {
        log(observer, Warn,
            "Duplicate key in key input map: " + number(code) + ", overwriting old value");
        deregisterKey(code, observer);
    }
    m_keys[code] = command;
    if (immediate)
        m_immediate.insert(code);
}

void KeyHandlerModel::deregisterKey(int code, Observer &observer)
{
    if (m_keys.erase(code) == 0) {
        log(observer, Warn, "Trying to remove a non-existing key " + number(code));
        return;
    }
    m_immediate.erase(code);
    m_longPress.disable(code);
}

void KeyHandlerModel::registerChord(int first, int second, int command, Observer &observer)
{
    if (m_chords.count({first, second}) > 0) {
        log(observer, Warn,
            "Duplicate keys in double key input map: QPair(" + number(first) + "," + number(second)
                + "), overwriting old value");
        deregisterChord(first, second, observer);
    }
    m_chords[{first, second}] = command;
    m_chords[{second, first}] = command;
}

void KeyHandlerModel::deregisterChord(int first, int second, Observer &observer)
{
    if (m_chords.erase({first, second}) == 0) {
        log(observer, Warn,
            "Trying to remove a non-existing double key " + number(first) + " + " + number(second));
        return;
    }
    m_chords.erase({second, first});
}

void KeyHandlerModel::invalidate()
{
    m_longPress.reset();
    m_chordDetector.reset();
}

void KeyHandlerModel::end()
{
    m_isGone = true;
    m_longPress.end();
    m_chordDetector.end();
}

void KeyHandlerModel::process(const std::vector<Record> &records, Observer &observer)
{
    for (const Record &record : records) {
        if (m_isGone)
            return;
        if (record.type != KeyType)
            continue;
        m_chordDetector.take(record, observer, [&](const std::vector<Record> &keys, bool fake) {
            take(keys, fake, observer);
            if (!m_isGone)
                observer.onKeys(keys, fake);
        });
    }
}

void KeyHandlerModel::tick(std::int64_t now, const std::vector<int> &order, Observer &observer)
{
    m_longPress.tick(now, order, [&](int code, int repeat) {
        notify(code, observer);
        if (!m_isGone)
            observer.onLongPress(code, repeat);
    });
}

void KeyHandlerModel::take(const std::vector<Record> &keys, bool fake, Observer &observer)
{
    for (const Record &key : keys)
        log(observer, Debug, "key:" + number(key.code) + " value " + number(key.value));
    if (keys.empty())
        return;
    if (keys.size() == 2) {
        takeChord(keys, observer);
        return;
    }
    const auto key = m_keys.find(keys.front().code);
    if (key == m_keys.end())
        m_longPress.take(keys.front());
    else
        handle(keys.front(), key->second, m_immediate.count(key->first) > 0, fake, observer);
}

void KeyHandlerModel::takeChord(const std::vector<Record> &keys, Observer &observer)
{
    const auto chord = m_chords.find({keys[0].code, keys[1].code});
    if (chord != m_chords.end() && chord->second != 0) {
        handle(keys[0], chord->second, true, false, observer);
        return;
    }
    const auto key = m_keys.find(keys[1].code);
    if (key == m_keys.end())
        m_longPress.take(keys[1]);
    else
        handle(keys[1], key->second, true, false, observer);
}

void KeyHandlerModel::handle(const Record &record, int command, bool immediate, bool fake,
                             Observer &observer)
{
    m_longPress.take(record);
    if (command == 0 || record.type != KeyType)
        return;
    if (immediate) {
        publish(command, record.value != 0 ? Pressed : Released, observer);
        return;
    }
    if (record.value != 0) {
        m_held[record.code] = false;
        return;
    }
    const auto held = m_held.find(record.code);
    const bool wasLong = held != m_held.end() && held->second;
    if (held != m_held.end())
        m_held.erase(held);
    if (!wasLong && fake)
        return;
    if (!wasLong)
        publish(command, Pressed, observer);
    publish(command, Released, observer);
}

void KeyHandlerModel::notify(int code, Observer &observer)
{
    const auto key = m_keys.find(code);
    if (key == m_keys.end())
        return;
    const auto held = m_held.find(code);
    if (held != m_held.end())
        held->second = true;
    publish(key->second, LongPressed, observer);
}

void KeyHandlerModel::publish(int command, int state, Observer &observer)
{
    report(observer, m_device, m_id, command, state, m_bus);
}

std::string KeyHandlerModel::state(std::int64_t now) const
{
    std::string text;
    for (const auto &held : m_held)
        text += std::to_string(held.first) + (held.second ? "! " : "  ");
    m_chordDetector.writeState(text, now);
    m_longPress.writeState(text, now);
    return text;
}

} // namespace Model
