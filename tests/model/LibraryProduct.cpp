#include "LibraryProduct.h"

#include "LibraryProbe.h"

#include <chrono>

namespace Model {

using namespace std::chrono_literals;
using Kind = ProductCall::Kind;
using Vorn::InputProbe;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::InputNode;
using Vorn::Sim::InputSubsystem;

namespace {

DeviceDescription description(int node)
{
    if (node == SwitchNode)
        return DeviceDescription::switchBox("jacks", BUS_VIRTUAL, {0, 1, 2});
    const int first = firstCodeOf(node);
    return DeviceDescription::keyboard(node == 0 ? "panel" : "hostlink",
                                       node == 0 ? BUS_HOST : BUS_USB,
                                       {first, first + 1, first + 2});
}

QString identifier(int number)
{
    return QString::fromStdString(identifierOf(number));
}

QString path(int node)
{
    return QString::fromStdString(pathOf(node));
}

} // namespace

void LibraryProduct::Application::onLine(const std::string &logger, int level,
                                         const std::string &line)
{
    for (const char *const start :
         {"Dev ", "Enter LinuxInputListener::readData", "Error reading from event device"})
    {
        if (line.rfind(start, 0) == 0)
            return;
    }
    ScriptedTrace::onLine(logger, level, line);
}

LibraryProduct::LibraryProduct(ProductPlan plan)
    : m_plan(std::move(plan))
{
    m_trace.slot = [this](const ProductCall &call) { act(call); };
    m_subsystem.setRecording(false);
    for (int node = 0; node < NodeCount; ++node)
        m_subsystem.plug(node, description(node));
    newReceiver();
    m_manager = std::make_unique<Devices>();
    m_manager->onAdd = [this](const QString &device, const QString &) {
        add(device.right(1).toInt());
    };
    m_clock.settle();
}

LibraryProduct::~LibraryProduct()
{
    m_trace.slot = {};
}

void LibraryProduct::perform(const Step &step)
{
    m_trace.clear();
    m_trace.script.start(step.nested);
    m_held.clear();
    for (const std::vector<BasicKeyInputHandler *> &handlers : m_keys) {
        for (BasicKeyInputHandler *handler : handlers) {
            for (const int code : InputProbe::holds(*handler).keys())
                m_held.push_back(code);
        }
    }
    act(step.call);
    m_clock.settle();
}

std::vector<int> LibraryProduct::notified() const
{
    std::vector<int> codes;
    for (const Observation &observation : m_trace.observations()) {
        if (observation.kind == Observation::Kind::LongPress)
            codes.push_back(static_cast<int>(observation.numbers[0]));
    }
    codes.insert(codes.end(), m_held.begin(), m_held.end());
    return codes;
}

void LibraryProduct::act(const ProductCall &call)
{
    InputNode &node = m_subsystem.node(call.node);
    switch (call.kind) {
    case Kind::Nothing:
        break;
    case Kind::Records:
        send(call);
        break;
    case Kind::Tick:
        m_clock.advance(50ms);
        break;
    case Kind::StepClock:
        m_clock.stepWallClock(std::chrono::milliseconds(call.number));
        break;
    case Kind::CallKeys:
        callKeys(call);
        break;
    case Kind::RegisterSwitch:
        if (BasicSwInputHandler *handler = switches(call))
            handler->registerSwitch(call.number, static_cast<InputEvent::Command>(call.command));
        break;
    case Kind::DeregisterSwitch:
        if (BasicSwInputHandler *handler = switches(call))
            handler->deregisterSwitch(call.number);
        break;
    case Kind::Select:
        if (m_manager)
            m_manager->selectHandler(identifier(call.number));
        break;
    case Kind::SelectKeys:
        if (m_manager)
            m_manager->selectKeyHandler(identifier(call.number));
        break;
    case Kind::SelectSwitches:
        if (m_manager)
            m_manager->selectSwitchHandler(identifier(call.number));
        break;
    case Kind::Invalidate:
        if (BasicKeyInputHandler *handler = keys(call))
            handler->invalidate();
        break;
    case Kind::Plug:
        if (!node.isPlugged())
            m_subsystem.plug(call.node, description(call.node));
        break;
    case Kind::Unplug:
        if (node.isPlugged()) {
            m_subsystem.unplug(call.node, InputSubsystem::Unread::Lost);
            m_clock.settle();
            forget(call.node);
        }
        break;
    case Kind::AddHandler:
        if (!m_manager)
            break;
        if (call.node == SwitchNode)
            addSwitches(call.node, new BasicSwInputHandler(QStringLiteral("more")),
                        identifier(call.number));
        else
            addKeys(call.node, new BasicKeyInputHandler(QStringLiteral("more")),
                    identifier(call.number));
        break;
    case Kind::Report:
        Input::reportInputEvent(InputEvent(static_cast<InputEvent::Command>(call.command),
                                           static_cast<InputEvent::State>(call.number),
                                           InputEvent::Bus::NoBus));
        break;
    case Kind::GetStatus:
        if (BasicSwInputHandler *handler = switches(call))
            handler->getInputStatus();
        break;
    case Kind::SetSwitch:
        node.setSwitch(call.number, call.flag);
        break;
    case Kind::DropReceiver:
        m_receiver.reset();
        break;
    case Kind::NewReceiver:
        newReceiver();
        break;
    case Kind::RemoveDevice:
        if (m_manager) {
            forget(call.node);
            m_manager->removeDevice(path(call.node));
        }
        break;
    case Kind::DeleteManager:
        for (int number = 0; number < NodeCount; ++number)
            forget(number);
        m_manager.reset();
        break;
    }
}

void LibraryProduct::add(int node)
{
    BasicKeyInputHandler *lastKeys = nullptr;
    BasicSwInputHandler *lastSwitches = nullptr;
    const QString name = QString::fromUtf8(description(node).name);
    for (const ProductPlan::Handler &plan : m_plan.handlers[node]) {
        const QString id = identifier(plan.identifier);
        if (node == SwitchNode) {
            if (!plan.isShared)
                lastSwitches = new BasicSwInputHandler(name);
            if (plan.isAddedFirst)
                addSwitches(node, lastSwitches, id);
            for (const auto &[code, command] : plan.switches)
                lastSwitches->registerSwitch(code, static_cast<InputEvent::Command>(command));
            if (!plan.isAddedFirst)
                addSwitches(node, lastSwitches, id);
            continue;
        }
        if (!plan.isShared)
            lastKeys = new BasicKeyInputHandler(name);
        if (plan.isAddedFirst)
            addKeys(node, lastKeys, id);
        for (const KeyCall &keyCall : plan.keys)
            Model::call(*lastKeys, keyCall);
        if (!plan.isAddedFirst)
            addKeys(node, lastKeys, id);
    }
    m_trace.note("added " + pathOf(node));
    m_trace.act();
}

void LibraryProduct::addKeys(int node, BasicKeyInputHandler *handler, const QString &id)
{
    std::vector<BasicKeyInputHandler *> &known = m_keys[static_cast<std::size_t>(node)];
    if (std::find(known.begin(), known.end(), handler) == known.end())
        observeDetectors(*handler, m_trace);
    known.push_back(handler);
    m_manager->addKeyHandler(path(node), handler, id);
}

void LibraryProduct::addSwitches(int node, BasicSwInputHandler *handler, const QString &id)
{
    m_switches.push_back(handler);
    m_manager->addSwitchHandler(path(node), handler, id);
}

void LibraryProduct::forget(int node)
{
    m_keys[static_cast<std::size_t>(node)].clear();
    if (node == SwitchNode)
        m_switches.clear();
}

void LibraryProduct::newReceiver()
{
    if (m_receiver)
        return;
    m_receiver = std::make_unique<QObject>();
    QObject::connect(Input::instance(), &Input::inputEvent, m_receiver.get(),
                     [this](const InputEvent &event) {
                         m_trace.note("second receiver: " + std::to_string(event.command()) + " "
                                      + std::to_string(event.state()));
                     });
}

void LibraryProduct::callKeys(const ProductCall &call)
{
    BasicKeyInputHandler *handler = keys(call);
    if (!handler)
        return;
    const KeyCall &keyCall = call.keyCall;
    const bool deregisters = keyCall.kind == KeyCall::Kind::DeregisterKey
        || (keyCall.kind == KeyCall::Kind::RegisterKey && keyCall.bus == KeyCall::AnyBus);
    // A held key without timeouts ends the process at the next tick, as documented.
    if (deregisters && InputProbe::isMapped(*handler, keyCall.code)
        && InputProbe::isHeld(*handler, keyCall.code))
        m_trace.note("would be fatal");
    else
        Model::call(*handler, keyCall);
}

void LibraryProduct::send(const ProductCall &call)
{
    QList<input_event> records;
    for (const ProductCall::Key &key : call.records)
        records.append(InputNode::record(key.type, firstCodeOf(call.node) + key.code, key.value,
                                         m_clock.now() - key.age));
    records.append(InputNode::record(EV_SYN, SYN_REPORT, 0));
    m_subsystem.node(call.node).send(records);
}

BasicKeyInputHandler *LibraryProduct::keys(const ProductCall &call) const
{
    const auto &known = m_keys[static_cast<std::size_t>(call.node)];
    const auto index = static_cast<std::size_t>(call.handler);
    return index < known.size() ? known[index] : nullptr;
}

BasicSwInputHandler *LibraryProduct::switches(const ProductCall &call) const
{
    const auto index = static_cast<std::size_t>(call.handler);
    return index < m_switches.size() ? m_switches[index] : nullptr;
}

} // namespace Model
