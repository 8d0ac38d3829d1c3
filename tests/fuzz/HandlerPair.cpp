#include "HandlerPair.h"

#include "LibraryProbe.h"

#include <chrono>
#include <cstdlib>
#include <iostream>

namespace Model {

using namespace std::chrono_literals;

void HandlerPair::HandlerTrace::onLine(const std::string &logger, int level,
                                       const std::string &line)
{
    if (logger != "LinuxInputListener")
        Trace::onLine(logger, level, line);
}

HandlerPair::HandlerPair(Vorn::Sim::VirtualClock &clock, LinuxInputListener *listener, int bus,
                         bool isLogging)
    : m_clock(clock)
    , m_seen(isLogging)
    , m_expected(isLogging)
    , m_observed(m_seen)
    , m_library(QStringLiteral("panel"), listener, m_seen)
    , m_model("panel")
{
    m_model.setBus(bus);
}

HandlerPair::~HandlerPair() = default;

void HandlerPair::call(const KeyCall &call)
{
    if (m_model.isFatal(call))
        return;
    m_story += text(call) + "\n";
    Model::call(m_library.handler(), call);
    m_model.call(call, m_expected);
    requireSame();
}

void HandlerPair::invalidate()
{
    m_story += "invalidate\n";
    m_library.handler().invalidate();
    m_model.invalidate();
    requireSame();
}

void HandlerPair::process(const std::vector<Record> &records)
{
    m_library.process(records);
    expect(records);
    requireSame();
}

void HandlerPair::expect(const std::vector<Record> &records)
{
    for (const Record &record : records) {
        m_story += std::to_string(record.type) + "/" + std::to_string(record.code) + "="
            + std::to_string(record.value) + " at " + std::to_string(record.msecs) + "\n";
    }
    m_model.process(records, m_expected);
}

void HandlerPair::tick()
{
    m_story += "tick\n";
    m_clock.stepWallClock(50ms);
    if (m_library.isTiming())
        m_library.tick();
    if (m_model.longPress().isTiming())
        m_model.tick(m_clock.now(), {}, m_expected);
    m_seen.sortTick();
    m_expected.sortTick();
    requireSame();
}

void HandlerPair::requireSame()
{
    if (!(m_seen.observations() == m_expected.observations())
        || m_library.isTiming() != m_model.longPress().isTiming())
    {
        std::cerr << m_story << "library:\n"
                  << text(m_seen.observations()) << "model:\n"
                  << text(m_expected.observations());
        std::abort();
    }
    m_seen.clear();
    m_expected.clear();
}

} // namespace Model
