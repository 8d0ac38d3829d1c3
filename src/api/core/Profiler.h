#ifndef VORN_CORE_PROFILER_H
#define VORN_CORE_PROFILER_H

#include "vorn_api_export.h"

#include <QString>

/// The profiling service, which measures how fast the user interface responds to an input.
///
/// This implementation does nothing, so that programs run where the service does not exist. The
/// functions are exported and not inline, so that the maker's library, or a test's recording one,
/// can replace them at link time or by symbol interposition.
class VORN_API_EXPORT Profiler
{
public:
    /// The process's only instance; never null, never deleted.
    static Profiler *instance();

    /// Starts a watcher named @p watcher that ends at the next event named @p event.
    void createWatcher(const QString &watcher, const QString &event);

    /// The name of the watcher that measures the response to an input.
    static const QString &UIResponseWatcher();

    /// The name of the event reported when the user interface is redrawn.
    static const QString &UIDrawEvent();

private:
    Profiler() = default;
};

#endif
