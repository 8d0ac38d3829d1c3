#ifndef VORN_SIM_RECORDTIME_H
#define VORN_SIM_RECORDTIME_H

#include <linux/input.h>

#include <ctime>

namespace Vorn::Sim {

/// Stamps @p record with @p time. The types of its fields depend on the size of `time_t`.
inline void setTime(input_event &record, const timespec &time)
{
    record.input_event_sec = static_cast<decltype(record.input_event_sec)>(time.tv_sec);
    record.input_event_usec = static_cast<decltype(record.input_event_usec)>(time.tv_nsec / 1000);
}

} // namespace Vorn::Sim

#endif
