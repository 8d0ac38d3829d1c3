// Runs a product for long in virtual time, counts its events and watches what it has in use.
//
// usage: vorn_soak RECORDS PLUG_CYCLES HOURS
//
// Prints what is in use as CSV, in 100 steps. Exits with 1 if an event is missing or too many, or
// if more is in use at the end than there was.

#include "Soak.h"
#include "Usage.h"

#include "KeyProcessing.h"

#include <QCoreApplication>

#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int steps = 100;
// Lists that still grow a little; a byte for each record would be far more.
constexpr std::size_t slack = 4096;

/// The bytes that a long-press detector leaves behind: it leaks its timer on purpose, and a timer
/// that ran is larger.
std::size_t leakOfADetector(bool isUsed)
{
    constexpr int count = 100;
    const std::size_t before = usageNow().allocated;
    for (int i = 0; i < count; ++i) {
        LongPressDetect detector;
        detector.registerEvent(KEY_OK, true, {600, 200});
        input_event press = Vorn::Sim::InputNode::record(EV_KEY, KEY_OK, 1);
        if (isUsed)
            detector.process(press);
    }
    return (usageNow().allocated - before) / count;
}

/// The same for a device: the key of one of its two maps was held.
std::size_t leakOfACycle()
{
    constexpr std::size_t rounding = 4 * 16;
    return leakOfADetector(true) + leakOfADetector(false) + (usageNow().isExact ? 0 : rounding);
}

/// One of the three series: so much of something, while memory and descriptors are watched.
class Series
{
public:
    Series(const Soak &soak, const char *name, qint64 target)
        : m_soak(soak)
        , m_name(name)
        , m_target(target)
    { }

    /// To be called with how much is @p done, starting with none.
    void watch(qint64 done)
    {
        if (done < m_next)
            return;
        const Usage usage = usageNow();
        if (done == 0)
            m_start = usage;
        std::printf("%s,%lld,%lld,%lld,%zu,%zu,%d\n", m_name, static_cast<long long>(done),
                    static_cast<long long>(m_soak.records()),
                    static_cast<long long>(m_soak.events()), usage.resident, usage.allocated,
                    usage.descriptors);
        m_next = done + std::max<qint64>(m_target / steps, 1);
    }

    /// @param leak bytes that the library leaks on purpose in the whole series
    bool isGood(std::size_t leak) const
    {
        const Usage end = usageNow();
        const std::string mistakes = m_soak.mistakes();
        if (!mistakes.empty())
            std::fprintf(stderr, "%s: events:\n%s", m_name, mistakes.c_str());
        if (end.descriptors != m_start.descriptors)
            std::fprintf(stderr, "%s: %d descriptors at the start, %d at the end\n", m_name,
                         m_start.descriptors, end.descriptors);
        const bool isFlat = end.allocated <= m_start.allocated + leak + slack;
        if (!isFlat)
            std::fprintf(stderr,
                         "%s: %zu bytes at the start, %zu at the end, of which %zu may be\n",
                         m_name, m_start.allocated, end.allocated, leak);
        return mistakes.empty() && end.descriptors == m_start.descriptors && isFlat;
    }

private:
    const Soak &m_soak;
    const char *const m_name;
    const qint64 m_target;
    qint64 m_next = 0;
    Usage m_start;
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: vorn_soak RECORDS PLUG_CYCLES HOURS\n");
        return 2;
    }
    const qint64 records = std::atoll(argv[1]);
    const qint64 cycles = std::atoll(argv[2]);
    const qint64 hours = std::atoll(argv[3]);

    const log4cplus::Initializer initializer;
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::OFF_LOG_LEVEL);
    const QCoreApplication application(argc, argv);
    Soak soak;
    // What is allocated once.
    for (int i = 0; i < 10; ++i) {
        soak.round();
        soak.plugCycle();
        soak.hour();
    }

    std::puts("series,done,records,events,resident_kib,allocated_bytes,descriptors");
    bool isGood = true;

    const qint64 before = soak.records();
    Series keys(soak, "records", records);
    for (qint64 done = 0; done < records; done = soak.records() - before) {
        keys.watch(done);
        soak.round();
    }
    isGood = keys.isGood(0) && isGood;

    const std::size_t leak = leakOfACycle();
    Series plugs(soak, "plug cycles", cycles);
    for (qint64 done = 0; done < cycles; ++done) {
        plugs.watch(done);
        soak.plugCycle();
    }
    isGood = plugs.isGood(static_cast<std::size_t>(cycles) * leak) && isGood;

    Series idle(soak, "hours", hours);
    for (qint64 done = 0; done < hours; ++done) {
        idle.watch(done);
        soak.hour();
    }
    isGood = idle.isGood(0) && isGood;
    return isGood ? 0 : 1;
}
