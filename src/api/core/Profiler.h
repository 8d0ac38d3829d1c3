#ifndef PROFILER_H
#define PROFILER_H

#include "vorn_api_export.h"

#include <QString>

/// The profiling service, which times the user interface's response to an input.
///
/// This build of it does nothing, so that programs run where the service does not exist. The
/// functions are exported and not inline: the maker's library, or a test's recording one, takes
/// their place at link time or by symbol interposition.
class VORN_API_EXPORT Profiler
{
public:
    /// The service of this process; never null, never deleted.
    static Profiler *instance();

    /// Starts a watcher called @p watcher that ends with the next event called @p event.
    void createWatcher(const QString &watcher, const QString &event);

    /// Name of the watcher that measures the response to an input.
    static const QString &UIResponseWatcher();

    /// Name of the event that a redraw of the user interface reports.
    static const QString &UIDrawEvent();

private:
    Profiler() = default;
};

#endif
