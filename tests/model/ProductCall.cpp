#include "ProductCall.h"

#include <array>

namespace Model {

namespace {

using Kind = ProductCall::Kind;

const std::array<Kind, 13> nestedKinds{
    {Kind::Nothing, Kind::CallKeys, Kind::Select, Kind::SelectKeys, Kind::Invalidate,
     Kind::AddHandler, Kind::Report, Kind::GetStatus, Kind::SelectSwitches, Kind::RegisterSwitch,
     Kind::DropReceiver, Kind::NewReceiver, Kind::RemoveDevice}};

/// Records and ticks come more often than the rest.
const std::array<Kind, 27> kinds{
    {Kind::Records,        Kind::Tick,         Kind::Records,        Kind::Records,
     Kind::Tick,           Kind::Tick,         Kind::Records,        Kind::Records,
     Kind::Records,        Kind::Tick,         Kind::StepClock,      Kind::CallKeys,
     Kind::CallKeys,       Kind::Select,       Kind::SelectKeys,     Kind::Invalidate,
     Kind::AddHandler,     Kind::Report,       Kind::Unplug,         Kind::Plug,
     Kind::SetSwitch,      Kind::GetStatus,    Kind::RegisterSwitch, Kind::DeregisterSwitch,
     Kind::SelectSwitches, Kind::DropReceiver, Kind::RemoveDevice}};

const std::array<int, 6> timeouts{{50, 100, 50, 150, 0, -50}};
const std::array<int, 8> clockSteps{{130, -130, 50, -50, 1000, -1000, 86'400'000, -86'400'000}};
const std::array<int, 9> commands{{1, 2, 11, 16, 18, 32, 44, 22, 0}};
const std::array<int, 6> identifiers{{0, 1, 0, 1, 0, 2}};
const std::array<const char *, 21> kindNames{{"nothing",
                                              "records",
                                              "tick",
                                              "step the clock",
                                              "keys:",
                                              "register switch",
                                              "deregister switch",
                                              "select",
                                              "select keys",
                                              "select switches",
                                              "invalidate",
                                              "plug",
                                              "unplug",
                                              "add a handler",
                                              "report",
                                              "get status",
                                              "set switch",
                                              "drop the receiver",
                                              "make the receiver",
                                              "remove",
                                              "delete the manager"}};

template <typename Array>
auto pick(Bytes &bytes, const Array &array)
{
    return array[static_cast<std::size_t>(bytes.below(static_cast<int>(array.size())))];
}

std::vector<ProductCall::Key> recordsFrom(Bytes &bytes)
{
    constexpr std::array<int, 8> values{{1, 0, 1, 0, 2, 1, 0, -1}};
    constexpr std::array<int, 8> ages{{0, 0, 0, 0, 10, 50, -100, 100'000}};
    std::vector<ProductCall::Key> records;
    for (int count = 1 + bytes.below(3); count > 0; --count) {
        ProductCall::Key key;
        key.code = bytes.below(KeysPerNode);
        key.value = pick(bytes, values);
        key.age = pick(bytes, ages);
        key.type = bytes.below(8) == 7 ? 4 : 1;
        records.push_back(key);
    }
    return records;
}

ProductCall callFrom(Bytes &bytes, Kind kind)
{
    ProductCall call;
    call.kind = kind;
    call.node = bytes.below(NodeCount);
    call.handler = bytes.below(3);
    switch (kind) {
    case Kind::Records:
        call.node = call.node % SwitchNode;
        call.records = recordsFrom(bytes);
        break;
    case Kind::CallKeys:
        call.node = call.node % SwitchNode;
        call.keyCall = keyCallFrom(bytes, firstCodeOf(call.node));
        break;
    case Kind::StepClock:
        call.number = pick(bytes, clockSteps);
        break;
    case Kind::RegisterSwitch:
    case Kind::DeregisterSwitch:
    case Kind::GetStatus:
    case Kind::SetSwitch:
        call.node = SwitchNode;
        call.number = bytes.below(SwitchCount);
        call.command = pick(bytes, commands);
        call.flag = bytes.below(2) == 0;
        break;
    case Kind::RemoveDevice:
        // Ends most of what can happen, so it is rare.
        if (bytes.below(8) == 7)
            call.kind = Kind::DeleteManager;
        break;
    case Kind::Report:
        call.command = pick(bytes, commands);
        call.number = bytes.below(6);
        break;
    case Kind::Select:
    case Kind::SelectKeys:
    case Kind::SelectSwitches:
    case Kind::AddHandler:
        call.number = pick(bytes, identifiers);
        break;
    default:
        break;
    }
    return call;
}

} // namespace

std::string pathOf(int node)
{
    return "/dev/input/event" + std::to_string(node);
}

std::string identifierOf(int number)
{
    return number == 0 ? "" : number == 1 ? "text" : "empty";
}

int Bytes::below(int limit)
{
    return m_next < m_bytes.size() ? m_bytes[m_next++] % limit : 0;
}

KeyCall keyCallFrom(Bytes &bytes, int firstCode)
{
    const int kind = bytes.below(10);
    const int code = firstCode + bytes.below(KeysPerNode);
    const int second = firstCode + bytes.below(KeysPerNode);
    const int command = pick(bytes, commands);
    KeyCall call = KeyCall::immediate(code, command);
    if (kind == 1 || kind == 2)
        call = KeyCall::deferred(code, command);
    if (kind >= 3 && kind <= 5) {
        std::vector<int> list;
        for (int count = 1 + bytes.below(3); count > 0; --count)
            list.push_back(pick(bytes, timeouts));
        call = KeyCall::longPress(code, bytes.below(2) == 0, list);
    }
    if (kind == 6 || kind == 7)
        call = KeyCall::chord(code, second, command);
    if (kind == 8)
        return KeyCall::withoutKey(code);
    if (kind == 9)
        return KeyCall::withoutChord(code, second);
    const int form = bytes.below(8);
    return form < 5 ? call : call.on(form - 4);
}

namespace {

/// Most keys have a command, and many a long press.
std::vector<KeyCall> usualKeys(Bytes &bytes, int firstCode)
{
    std::vector<KeyCall> calls;
    for (int code = firstCode; code < firstCode + KeysPerNode; ++code) {
        const int kind = bytes.below(8);
        if (kind < 7) {
            calls.push_back(kind % 2 == 0 ? KeyCall::immediate(code, pick(bytes, commands))
                                          : KeyCall::deferred(code, pick(bytes, commands)));
        }
        if (kind > 3)
            calls.push_back(KeyCall::longPress(code, kind > 4, {100, 50}));
    }
    return calls;
}

} // namespace

ProductPlan planFrom(Bytes &bytes)
{
    ProductPlan plan;
    for (int node = 0; node < NodeCount; ++node) {
        for (int count = 1 + bytes.below(3); count > 0; --count) {
            ProductPlan::Handler handler;
            handler.identifier = plan.handlers[node].empty() ? 0 : bytes.below(2);
            handler.isShared = bytes.below(4) == 3 && !plan.handlers[node].empty();
            handler.isAddedFirst = bytes.below(2) == 0;
            if (node != SwitchNode)
                handler.keys = usualKeys(bytes, firstCodeOf(node));
            for (int calls = bytes.below(6); calls > 0; --calls) {
                if (node == SwitchNode)
                    handler.switches.emplace_back(bytes.below(SwitchCount), pick(bytes, commands));
                else
                    handler.keys.push_back(keyCallFrom(bytes, firstCodeOf(node)));
            }
            plan.handlers[node].push_back(handler);
        }
    }
    return plan;
}

Step stepFrom(Bytes &bytes)
{
    Step step;
    step.call = callFrom(bytes, pick(bytes, kinds));
    for (int count = bytes.below(4); count > 0; --count)
        step.nested.push_back(callFrom(bytes, pick(bytes, nestedKinds)));
    if (step.call.kind == Kind::Tick)
        step.times = 1 + static_cast<std::size_t>(bytes.below(5));
    return step;
}

std::string text(const ProductCall &call)
{
    std::string text = kindNames[static_cast<std::size_t>(call.kind)];
    switch (call.kind) {
    case Kind::Records:
        text += " of " + std::to_string(call.node) + ":";
        for (const ProductCall::Key &key : call.records) {
            text += " " + std::to_string(key.type) + "/"
                + std::to_string(firstCodeOf(call.node) + key.code) + "="
                + std::to_string(key.value);
            if (key.age != 0)
                text += " " + std::to_string(key.age) + " ms ago";
        }
        break;
    case Kind::CallKeys:
        text += " handler " + std::to_string(call.handler) + " " + Model::text(call.keyCall);
        break;
    case Kind::StepClock:
        text += " " + std::to_string(call.number);
        break;
    case Kind::RegisterSwitch:
    case Kind::DeregisterSwitch:
    case Kind::GetStatus:
        text += " of handler " + std::to_string(call.handler) + " " + std::to_string(call.number)
            + " is " + std::to_string(call.command);
        break;
    case Kind::SetSwitch:
        text += " " + std::to_string(call.number) + (call.flag ? " on" : " off");
        break;
    case Kind::Report:
        text += " " + std::to_string(call.command) + " state " + std::to_string(call.number);
        break;
    case Kind::Select:
    case Kind::SelectKeys:
    case Kind::SelectSwitches:
        text += " '" + identifierOf(call.number) + "'";
        break;
    case Kind::AddHandler:
        text += " to " + std::to_string(call.node) + " for '" + identifierOf(call.number) + "'";
        break;
    case Kind::Plug:
    case Kind::Unplug:
    case Kind::RemoveDevice:
    case Kind::Invalidate:
        text += " " + std::to_string(call.node) + " handler " + std::to_string(call.handler);
        break;
    default:
        break;
    }
    return text;
}

std::string text(const Step &step)
{
    std::string result = text(step.call) + "\n";
    for (const ProductCall &call : step.nested)
        result += "    in a slot: " + text(call) + "\n";
    return result;
}

std::string text(const ProductPlan &plan)
{
    std::string result;
    for (int node = 0; node < NodeCount; ++node) {
        for (const ProductPlan::Handler &handler : plan.handlers[node]) {
            result += std::to_string(node) + " '" + identifierOf(handler.identifier) + "'"
                + (handler.isShared ? " shared" : "") + (handler.isAddedFirst ? " added first" : "")
                + "\n";
            for (const KeyCall &call : handler.keys)
                result += "    " + text(call) + "\n";
            for (const auto &[code, command] : handler.switches)
                result +=
                    "    switch " + std::to_string(code) + " is " + std::to_string(command) + "\n";
        }
    }
    return result;
}

} // namespace Model
