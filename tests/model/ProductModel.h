#ifndef MODEL_PRODUCTMODEL_H
#define MODEL_PRODUCTMODEL_H

#include "KeyHandlerModel.h"
#include "ProductCall.h"
#include "Script.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace Model {

/// A switch handler.
class SwitchHandlerModel
{
public:
    explicit SwitchHandlerModel(std::string device)
        : m_device(std::move(device))
    { }

    void setBus(int bus) { m_bus = bus; }
    void enter(int code, int command, Observer &observer);
    void remove(int code, Observer &observer);
    void process(const Record &record, Observer &observer);

private:
    std::string m_device;
    int m_bus = 0;
    std::map<int, int> m_switches;
};

/// The application's slots: the first acts, the second only takes note, and comes and goes.
class ApplicationModel : public ScriptedTrace
{
public:
    using ScriptedTrace::ScriptedTrace;

    void onPublished(int command, int state, int bus) override;
    void dropReceiver() { m_hasReceiver = false; }
    void newReceiver();

private:
    bool m_hasReceiver = true;
    int m_receiverSince = 0; ///< the event during which it was connected
    int m_events = 0;
};

/// A product with its device manager, the devices and the application.
class ProductModel
{
public:
    ProductModel(ProductPlan plan, std::int64_t now);

    /// @param order the codes that the library has notified in this step, one after the other, and
    /// perhaps more
    void perform(const Step &step, const std::vector<int> &order);

    Trace &trace() { return m_application; }

private:
    struct KeyHandler
    {
        KeyHandlerModel model;
        int starts = 0; ///< of its timer, as far as noticed
        bool hasListener = false;
    };

    struct SwitchHandler
    {
        SwitchHandlerModel model;
        bool hasListener = false;
    };

    using Keys = std::shared_ptr<KeyHandler>;
    using Switches = std::shared_ptr<SwitchHandler>;

    template <typename Handler>
    struct Registered
    {
        std::string id;
        Handler handler;
    };

    struct Node
    {
        bool isPlugged = false;
        bool isKnown = false;
        bool hasListeners = false;
        std::vector<Registered<Keys>> keys; ///< in order of registration
        std::vector<Registered<Switches>> switches;
        Keys keyReceiver;
        Switches switchReceiver;
        std::array<bool, SwitchCount> isOn{};
    };

    void act(const ProductCall &call);
    void scan();
    void arrive(int number);
    void remove(int number);
    void forget(Node &node);
    void deleteManager();
    void registerPlan(int number);
    void addKeyHandler(int number, const Keys &handler, const std::string &id);
    void addSwitchHandler(int number, const Switches &handler, const std::string &id);
    void select(const std::string &id);
    void selectKeys(const std::string &id);
    void selectSwitches(const std::string &id);
    void setReceiver(Node &node, const Keys &handler);
    void deliver(const ProductCall &call);
    void setSwitch(const ProductCall &call);
    void tick();
    void noticeTimers();
    void getStatus(const ProductCall &call);
    void enter(const std::string &function, const std::string &arguments);
    void line(int level, const std::string &text);
    void listenerLine(int level, const std::string &text);
    Keys keys(int node, int number) const;
    Switches switches(int number) const;

    const ProductPlan m_plan;
    std::int64_t m_now;
    ApplicationModel m_application{true};
    std::array<Node, NodeCount> m_nodes;
    std::string m_currentId;
    bool m_isManaged = true;
    std::vector<Keys> m_timers; ///< those that run, in the order in which they expire
    std::vector<int> m_order;
    std::size_t m_notified = 0;
};

} // namespace Model

#endif
