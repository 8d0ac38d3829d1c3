#ifndef PROFILERRECORDER_H
#define PROFILERRECORDER_H

#include <QString>

#include <functional>

/// Called for each Profiler::createWatcher() in the process. The executable defines that function
/// itself, which replaces the one in libvorn_api.
void setProfilerCallback(std::function<void(const QString &, const QString &)> callback);

#endif
