#ifndef HANDLERPAIR_H
#define HANDLERPAIR_H

#include "KeyHandlerModel.h"
#include "LibraryKeys.h"
#include "ProductCall.h"
#include "VirtualClock.h"

#include <vector>

namespace Model {

/// A handler of the library and its model, which must do the same.
class HandlerPair
{
public:
    /// @param listener taken away from the handler before it is destroyed; may be null
    HandlerPair(Vorn::Sim::VirtualClock &clock, LinuxInputListener *listener, int bus,
                bool isLogging);
    ~HandlerPair();
    HandlerPair(const HandlerPair &) = delete;
    HandlerPair &operator=(const HandlerPair &) = delete;

    BasicKeyInputHandler &handler() { return m_library.handler(); }

    /// Does nothing if the next tick would end the process.
    void call(const KeyCall &call);
    void invalidate();
    void process(const std::vector<Record> &records);
    /// What the model does with records that the handler gets from elsewhere.
    void expect(const std::vector<Record> &records);
    /// 50 ms pass; the event loop does not run.
    void tick();

    /// Aborts the process, with the story, if they differ.
    void requireSame();

private:
    /// Leaves out what listeners say.
    class HandlerTrace : public Trace
    {
    public:
        using Trace::Trace;
        void onLine(const std::string &logger, int level, const std::string &line) override;
    };

    Vorn::Sim::VirtualClock &m_clock;
    HandlerTrace m_seen;
    Trace m_expected;
    BusAndLog m_observed;
    LibraryKeys m_library;
    KeyHandlerModel m_model;
    std::string m_story;
};

} // namespace Model

#endif
