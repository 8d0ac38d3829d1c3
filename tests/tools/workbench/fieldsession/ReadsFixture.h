#ifndef READSFIXTURE_H
#define READSFIXTURE_H

#include "LogReads.h"

#include <linux/input.h>

#include <gmock/gmock.h>

/// Reads of a log, with all that they need.
class ReadsFixture : public testing::Test
{
protected:
    void read(int descriptor) { m_reads.take(Vorn::Workbench::Said::ReadBegun{descriptor}); }
    void record(int type, int code, int value = 1)
    {
        m_reads.take(Vorn::Workbench::Said::RecordLogged{type, code, value});
    }
    /// A detector has stored the press of a key.
    Vorn::Workbench::LogReads::Cause stored(int code)
    {
        return m_reads.causeOf(code, Vorn::Workbench::KeyValue::Press);
    }

    Vorn::Workbench::LineTime m_time;
    Vorn::Workbench::LogCoverage m_coverage;
    Vorn::Workbench::LogQueue m_queue{&m_coverage, [](const auto &) {}};
    Vorn::Workbench::LogDevices m_devices;
    Vorn::Workbench::LogOrigins m_origins{&m_devices};
    Vorn::Workbench::LogDetectors m_detectors;
    Vorn::Workbench::LogOutcomes m_outcomes{&m_queue, &m_detectors};
    Vorn::Workbench::LogReads m_reads{&m_time, &m_devices, &m_origins, &m_queue, &m_outcomes};
};

#endif
