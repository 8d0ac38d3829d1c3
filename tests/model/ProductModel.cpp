#include "ProductModel.h"

#include "LogText.h"

#include <algorithm>

namespace Model {

namespace {

using Kind = ProductCall::Kind;

const char *const managerLog = "BasicInputHandler";

constexpr int SwitchEnabled = 4;
constexpr int SwitchDisabled = 5;

struct Identity
{
    const char *name;
    int bustype; ///< of Linux
    int bus; ///< of the events
};

const std::array<Identity, NodeCount> identities{
    {{"panel", 25, 2}, {"hostlink", 3, 1}, {"jacks", 6, 0}}};

} // namespace

void SwitchHandlerModel::enter(int code, int command, Observer &observer)
{
    if (m_switches.count(code) > 0)
        observer.onLine(managerLog, Warn,
                        "Duplicate key in switch input map: " + std::to_string(code)
                            + ", overwriting old value");
    m_switches[code] = command;
}

void SwitchHandlerModel::remove(int code, Observer &observer)
{
    if (m_switches.erase(code) == 0)
        observer.onLine(managerLog, Warn,
                        "Trying to remove non-existing switch " + std::to_string(code));
}

void SwitchHandlerModel::process(const Record &record, Observer &observer)
{
    const auto found = m_switches.find(record.code);
    if (record.type != SwitchType || found == m_switches.end())
        return;
    // The device manager keeps the identifier to itself.
    report(observer, m_device, "", found->second,
           record.value != 0 ? SwitchEnabled : SwitchDisabled, m_bus);
}

void ApplicationModel::onPublished(int command, int state, int bus)
{
    const int event = ++m_events;
    ScriptedTrace::onPublished(command, state, bus);
    if (m_hasReceiver && m_receiverSince < event)
        note("second receiver: " + std::to_string(command) + " " + std::to_string(state));
}

void ApplicationModel::newReceiver()
{
    if (m_hasReceiver)
        return;
    m_hasReceiver = true;
    m_receiverSince = m_events;
}

ProductModel::ProductModel(ProductPlan plan, std::int64_t now)
    : m_plan(std::move(plan))
    , m_now(now)
{
    m_application.slot = [this](const ProductCall &call) { act(call); };
    for (Node &node : m_nodes)
        node.isPlugged = true;
    enter("BasicInputHandler", "");
    scan();
}

void ProductModel::perform(const Step &step, const std::vector<int> &order)
{
    m_application.clear();
    m_application.script.start(step.nested);
    m_order = order;
    m_notified = 0;
    act(step.call);
    noticeTimers();
}

void ProductModel::act(const ProductCall &call)
{
    Node &node = m_nodes[static_cast<std::size_t>(call.node)];
    switch (call.kind) {
    case Kind::Nothing:
        break;
    case Kind::Records:
        deliver(call);
        break;
    case Kind::Tick:
        tick();
        break;
    case Kind::StepClock:
        m_now += call.number;
        break;
    case Kind::CallKeys: {
        const Keys handler = keys(call.node, call.handler);
        if (!handler)
            break;
        if (handler->model.isFatal(call.keyCall))
            m_application.note("would be fatal");
        else
            handler->model.call(call.keyCall, m_application);
        break;
    }
    case Kind::RegisterSwitch:
        if (const Switches handler = switches(call.handler))
            handler->model.enter(call.number, call.command, m_application);
        break;
    case Kind::DeregisterSwitch:
        if (const Switches handler = switches(call.handler))
            handler->model.remove(call.number, m_application);
        break;
    case Kind::Select:
        if (m_isManaged)
            select(identifierOf(call.number));
        break;
    case Kind::SelectKeys:
        if (m_isManaged)
            selectKeys(identifierOf(call.number));
        break;
    case Kind::SelectSwitches:
        if (m_isManaged)
            selectSwitches(identifierOf(call.number));
        break;
    case Kind::Invalidate:
        if (const Keys handler = keys(call.node, call.handler))
            handler->model.invalidate();
        break;
    case Kind::Plug:
        node.isOn = node.isPlugged ? node.isOn : std::array<bool, SwitchCount>{};
        node.isPlugged = true;
        scan();
        break;
    case Kind::Unplug:
        node.isPlugged = false;
        scan();
        break;
    case Kind::AddHandler:
        if (!m_isManaged)
            break;
        if (call.node == SwitchNode)
            addSwitchHandler(
                call.node,
                std::make_shared<SwitchHandler>(SwitchHandler{SwitchHandlerModel("more")}),
                identifierOf(call.number));
        else
            addKeyHandler(call.node,
                          std::make_shared<KeyHandler>(KeyHandler{KeyHandlerModel("more")}),
                          identifierOf(call.number));
        break;
    case Kind::Report:
        m_application.onLine("Input", Debug, busText(call.command, call.number));
        m_application.onPublished(call.command, call.number, 0);
        break;
    case Kind::GetStatus:
        getStatus(call);
        break;
    case Kind::SetSwitch:
        setSwitch(call);
        break;
    case Kind::DropReceiver:
        m_application.dropReceiver();
        break;
    case Kind::NewReceiver:
        m_application.newReceiver();
        break;
    case Kind::RemoveDevice:
        if (m_isManaged)
            remove(call.node);
        break;
    case Kind::DeleteManager:
        deleteManager();
        break;
    }
}

void ProductModel::scan()
{
    if (!m_isManaged)
        return;
    std::vector<int> added;
    for (int number = 0; number < NodeCount; ++number) {
        const Node &node = m_nodes[static_cast<std::size_t>(number)];
        if (node.isPlugged && !node.isKnown) {
            line(Debug, " ---> added '" + pathOf(number) + "'");
            added.push_back(number);
        }
    }
    for (int number = 0; number < NodeCount; ++number) {
        Node &node = m_nodes[static_cast<std::size_t>(number)];
        if (!node.isPlugged && node.isKnown) {
            remove(number);
            node.isKnown = false;
        }
    }
    for (const int number : added) {
        if (m_isManaged)
            arrive(number);
    }
}

void ProductModel::arrive(int number)
{
    const Identity &identity = identities[static_cast<std::size_t>(number)];
    const auto identify = [&] {
        listenerLine(Info, "Event device " + pathOf(number) + " ready");
        listenerLine(Debug, "bustype: " + std::to_string(identity.bustype));
        listenerLine(Debug, std::string("name: ") + identity.name);
    };
    if (number == SwitchNode) {
        listenerLine(Warn, "Event device " + pathOf(number) + " does not support EV_KEY");
        identify();
    } else {
        identify();
        listenerLine(Debug, "Event device " + pathOf(number) + " does not support EV_SW");
    }
    Node &node = m_nodes[static_cast<std::size_t>(number)];
    node.isKnown = true;
    node.hasListeners = true;
    registerPlan(number);
    m_application.note("added " + pathOf(number));
    m_application.act();
}

void ProductModel::registerPlan(int number)
{
    Keys lastKeys;
    Switches lastSwitches;
    const auto index = static_cast<std::size_t>(number);
    const Identity &identity = identities[index];
    for (const ProductPlan::Handler &plan : m_plan.handlers[index]) {
        const std::string id = identifierOf(plan.identifier);
        if (number == SwitchNode) {
            if (!plan.isShared)
                lastSwitches = std::make_shared<SwitchHandler>(
                    SwitchHandler{SwitchHandlerModel(identity.name)});
            if (plan.isAddedFirst)
                addSwitchHandler(number, lastSwitches, id);
            for (const auto &[code, command] : plan.switches)
                lastSwitches->model.enter(code, command, m_application);
            if (!plan.isAddedFirst)
                addSwitchHandler(number, lastSwitches, id);
            continue;
        }
        if (!plan.isShared)
            lastKeys = std::make_shared<KeyHandler>(KeyHandler{KeyHandlerModel(identity.name)});
        if (plan.isAddedFirst)
            addKeyHandler(number, lastKeys, id);
        for (const KeyCall &call : plan.keys)
            lastKeys->model.call(call, m_application);
        if (!plan.isAddedFirst)
            addKeyHandler(number, lastKeys, id);
    }
}

void ProductModel::remove(int number)
{
    line(Info, "Removing " + pathOf(number));
    forget(m_nodes[static_cast<std::size_t>(number)]);
}

void ProductModel::forget(Node &node)
{
    for (const auto &registered : node.keys) {
        registered.handler->model.end();
        m_timers.erase(std::remove(m_timers.begin(), m_timers.end(), registered.handler),
                       m_timers.end());
    }
    node.keys.clear();
    node.switches.clear();
    node.keyReceiver.reset();
    node.switchReceiver.reset();
    node.hasListeners = false;
}

void ProductModel::deleteManager()
{
    for (Node &node : m_nodes)
        forget(node);
    m_isManaged = false;
}

void ProductModel::addKeyHandler(int number, const Keys &handler, const std::string &id)
{
    const auto index = static_cast<std::size_t>(number);
    Node &node = m_nodes[index];
    enter("addKeyHandler", "Device: " + pathOf(number) + "; id: " + id);
    enter("setKeyListener", pathOf(number));
    handler->hasListener = handler->hasListener || node.hasListeners;
    if (handler->hasListener)
        handler->model.setBus(identities[index].bus);
    else
        line(Error, "Linux input listener for " + pathOf(number) + " does not exists");
    handler->model.setId(id);
    node.keys.push_back({id, handler});
    if (id == m_currentId)
        selectKeys(id);
}

void ProductModel::addSwitchHandler(int number, const Switches &handler, const std::string &id)
{
    const auto index = static_cast<std::size_t>(number);
    Node &node = m_nodes[index];
    enter("addSwitchHandler", "Device: " + pathOf(number) + "; id: " + id);
    enter("setSwitchListener", pathOf(number));
    handler->hasListener = handler->hasListener || node.hasListeners;
    if (handler->hasListener)
        handler->model.setBus(identities[index].bus);
    else
        line(Error, "Linux input listener for " + pathOf(number) + " does not exists");
    node.switches.push_back({id, handler});
    if (id == m_currentId)
        selectSwitches(id);
}

void ProductModel::select(const std::string &id)
{
    enter("selectHandler", id);
    if (id == m_currentId)
        return;
    m_currentId = id;
    selectKeys(id);
    selectSwitches(id);
}

void ProductModel::selectKeys(const std::string &id)
{
    enter("selectKeyHandler", id);
    for (Node &node : m_nodes) {
        if (!node.hasListeners)
            continue;
        const auto last = std::find_if(node.keys.rbegin(), node.keys.rend(),
                                       [&](const auto &registered) { return registered.id == id; });
        setReceiver(node, last == node.keys.rend() ? nullptr : last->handler);
    }
}

void ProductModel::selectSwitches(const std::string &id)
{
    enter("selectSwitchHandler", id);
    for (Node &node : m_nodes) {
        if (!node.hasListeners)
            continue;
        const auto last = std::find_if(node.switches.rbegin(), node.switches.rend(),
                                       [&](const auto &registered) { return registered.id == id; });
        node.switchReceiver = last == node.switches.rend() ? nullptr : last->handler;
    }
}

void ProductModel::setReceiver(Node &node, const Keys &handler)
{
    if (node.keyReceiver)
        node.keyReceiver->model.invalidate();
    node.keyReceiver = handler;
}

void ProductModel::deliver(const ProductCall &call)
{
    Node &node = m_nodes[static_cast<std::size_t>(call.node)];
    if (!node.hasListeners)
        return;
    std::vector<Record> records;
    for (const ProductCall::Key &key : call.records)
        records.push_back(
            {key.type, firstCodeOf(call.node) + key.code, key.value, m_now - key.age});
    records.push_back({0, 0, 0, m_now});
    for (const Record &record : records)
        listenerLine(Debug,
                     " type: " + std::to_string(record.type) + " code:"
                         + std::to_string(record.code) + " value:" + std::to_string(record.value));
    const Keys receiver = node.keyReceiver;
    if (receiver)
        receiver->model.process(records, m_application);
}

void ProductModel::setSwitch(const ProductCall &call)
{
    Node &node = m_nodes[SwitchNode];
    bool &isOn = node.isOn[static_cast<std::size_t>(call.number)];
    if (!node.isPlugged || isOn == call.flag)
        return;
    isOn = call.flag;
    if (!node.hasListeners)
        return;
    listenerLine(Debug,
                 " type: 5 code:" + std::to_string(call.number)
                     + " value:" + std::to_string(isOn ? 1 : 0));
    listenerLine(Debug, " type: 0 code:0 value:0");
    const Switches receiver = node.switchReceiver;
    if (receiver)
        receiver->model.process({SwitchType, call.number, isOn ? 1 : 0, m_now}, m_application);
}

void ProductModel::getStatus(const ProductCall &call)
{
    const Switches handler = switches(call.handler);
    if (!handler || !handler->hasListener)
        return;
    constexpr int scannedSwitches = 16;
    const Node &node = m_nodes[SwitchNode];
    for (int code = 0; code < scannedSwitches; ++code) {
        const bool isOn = code < SwitchCount && node.isOn[static_cast<std::size_t>(code)];
        // With the device its listener goes, and the receiver.
        const Switches receiver = node.switchReceiver;
        if (receiver)
            receiver->model.process({SwitchType, code, isOn ? 1 : 0, 0}, m_application);
    }
}

void ProductModel::tick()
{
    m_now += 50;
    const std::vector<Keys> due = m_timers;
    for (const Keys &handler : due) {
        if (!handler->model.longPress().isTiming())
            continue;
        // The library may notify the keys of one tick in any order; a key at most once.
        std::vector<int> order;
        for (std::size_t i = m_notified; i < m_order.size(); ++i) {
            if (std::find(order.begin(), order.end(), m_order[i]) != order.end())
                break;
            order.push_back(m_order[i]);
        }
        const int before = handler->model.longPress().notifications();
        handler->model.tick(m_now, order, m_application);
        m_notified += static_cast<std::size_t>(handler->model.longPress().notifications() - before);
    }
}

void ProductModel::noticeTimers()
{
    for (const Node &node : m_nodes) {
        for (const auto &registered : node.keys) {
            KeyHandler &handler = *registered.handler;
            const LongPressModel &longPress = handler.model.longPress();
            const bool isNew = longPress.starts() != handler.starts;
            handler.starts = longPress.starts();
            if (isNew || !longPress.isTiming())
                m_timers.erase(std::remove(m_timers.begin(), m_timers.end(), registered.handler),
                               m_timers.end());
            if (isNew && longPress.isTiming())
                m_timers.push_back(registered.handler);
        }
    }
}

void ProductModel::enter(const std::string &function, const std::string &arguments)
{
    line(TraceLevel, "Enter BasicInputHandler::" + function + ": " + arguments);
}

void ProductModel::line(int level, const std::string &text)
{
    m_application.onLine(managerLog, level, text);
}

void ProductModel::listenerLine(int level, const std::string &text)
{
    m_application.onLine("LinuxInputListener", level, text);
}

ProductModel::Keys ProductModel::keys(int node, int number) const
{
    const auto &keys = m_nodes[static_cast<std::size_t>(node)].keys;
    const auto index = static_cast<std::size_t>(number);
    return index < keys.size() ? keys[index].handler : nullptr;
}

ProductModel::Switches ProductModel::switches(int number) const
{
    const auto &switches = m_nodes[SwitchNode].switches;
    const auto index = static_cast<std::size_t>(number);
    return index < switches.size() ? switches[index].handler : nullptr;
}

} // namespace Model
