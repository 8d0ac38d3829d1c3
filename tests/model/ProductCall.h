#ifndef MODEL_PRODUCTCALL_H
#define MODEL_PRODUCTCALL_H

#include "KeyCall.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Model {

constexpr int NodeCount = 3;
/// The last node is a box of switches, the others have three keys each.
constexpr int SwitchNode = NodeCount - 1;
constexpr int KeysPerNode = 3;
constexpr int SwitchCount = 3;

/// The code of the first key of a node, so that a code tells the node.
constexpr int firstCodeOf(int node)
{
    return 30 + 10 * node;
}

/// "/dev/input/event0".
std::string pathOf(int node);
/// "" or "text" or one without handlers.
std::string identifierOf(int number);

/// Something that a product, its user or its surroundings do. Handlers are numbered in the order in
/// which they were registered for a node; without that handler nothing is done.
struct ProductCall
{
    enum class Kind {
        Nothing,
        Records, ///< the device delivers a batch
        Tick, ///< 50 ms pass
        StepClock,
        CallKeys,
        RegisterSwitch,
        DeregisterSwitch,
        Select,
        SelectKeys,
        SelectSwitches,
        Invalidate,
        Plug,
        Unplug,
        AddHandler, ///< one more of the identifier
        Report, ///< straight to the bus
        GetStatus, ///< of the switches
        SetSwitch,
        DropReceiver, ///< deletes the application's second receiver
        NewReceiver,
        RemoveDevice, ///< the device manager's own call
        DeleteManager, ///< for good
    };

    struct Key
    {
        int type = 1;
        int code = 0;
        int value = 0;
        int age = 0; ///< ms
    };

    Kind kind = Kind::Nothing;
    int node = 0;
    int handler = 0;
    int number = 0; ///< identifier, ms, switch, or state of an event
    int command = 0;
    bool flag = false;
    KeyCall keyCall;
    std::vector<Key> records;
};

std::string text(const ProductCall &call);

/// A call, and what the slots that it reaches do in turn.
struct Step
{
    ProductCall call;
    std::vector<ProductCall> nested; ///< each time
    std::size_t times = 1;
};

std::string text(const Step &step);

/// What a product registers when a device arrives.
struct ProductPlan
{
    struct Handler
    {
        int identifier = 0;
        bool isShared = false; ///< the handler before serves this identifier as well
        bool isAddedFirst = false; ///< before its registrations
        std::vector<KeyCall> keys; ///< for a keyboard
        std::vector<std::pair<int, int>> switches; ///< code and command, for a box of switches
    };
    std::vector<Handler> handlers[NodeCount];
};

std::string text(const ProductPlan &plan);

/// Bytes as decisions. Zeros decide for what comes first, and follow when the bytes are used up.
class Bytes
{
public:
    explicit Bytes(const std::vector<std::uint8_t> &bytes)
        : m_bytes(bytes)
    { }

    int below(int limit);
    bool isOver() const { return m_next >= m_bytes.size(); }

private:
    const std::vector<std::uint8_t> &m_bytes;
    std::size_t m_next = 0;
};

ProductPlan planFrom(Bytes &bytes);
Step stepFrom(Bytes &bytes);
KeyCall keyCallFrom(Bytes &bytes, int firstCode);

} // namespace Model

#endif
