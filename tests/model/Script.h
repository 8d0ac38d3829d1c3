#ifndef MODEL_SCRIPT_H
#define MODEL_SCRIPT_H

#include "Observation.h"
#include "ProductCall.h"

#include <functional>
#include <utility>

namespace Model {

/// What the slots of an application do: each that is called takes the next call of the step.
class Script
{
public:
    using Perform = std::function<void(const ProductCall &)>;

    void start(const std::vector<ProductCall> &nested)
    {
        m_nested = nested;
        m_next = 0;
    }

    void slot(Trace &trace, const Perform &perform)
    {
        if (m_next >= m_nested.size())
            return;
        const ProductCall call = m_nested[m_next++];
        trace.note("in a slot: " + text(call));
        perform(call);
        trace.note("left");
    }

private:
    std::vector<ProductCall> m_nested;
    std::size_t m_next = 0;
};

/// A trace whose owner acts from inside each signal.
class ScriptedTrace : public Trace
{
public:
    using Trace::Trace;

    void onKeys(const std::vector<Record> &keys, bool fake) override
    {
        Trace::onKeys(keys, fake);
        act();
    }
    void onLongPress(int code, int repeat) override
    {
        Trace::onLongPress(code, repeat);
        act();
    }
    void onPublished(int command, int state, int bus) override
    {
        Trace::onPublished(command, state, bus);
        act();
    }
    void act()
    {
        if (slot)
            script.slot(*this, slot);
    }

    Script script;
    Script::Perform slot;
};

} // namespace Model

#endif
