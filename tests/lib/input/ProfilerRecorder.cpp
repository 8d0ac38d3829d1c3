#include "ProfilerRecorder.h"

#include "Profiler.h"

#include <utility>

namespace {

std::function<void(const QString &, const QString &)> &profilerCallback()
{
    static std::function<void(const QString &, const QString &)> callback;
    return callback;
}

} // namespace

void setProfilerCallback(std::function<void(const QString &, const QString &)> callback)
{
    profilerCallback() = std::move(callback);
}

void Profiler::createWatcher(const QString &watcher, const QString &event)
{
    if (profilerCallback())
        profilerCallback()(watcher, event);
}
