#ifndef PROFILERRECORDER_H
#define PROFILERRECORDER_H

#include <QString>

#include <functional>

/// Called for each Profiler::createWatcher() of the process. The executable's own definition of
/// that function takes the place of the one in libvorn_api.
void setProfilerCallback(std::function<void(const QString &, const QString &)> callback);

#endif
