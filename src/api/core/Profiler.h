#ifndef VORN_CORE_PROFILER_H
#define VORN_CORE_PROFILER_H

#include "vorn_api_export.h"

#include <QString>

/// @file
/// The maker's profiling service, as far as the library uses it.

/// The profiling service, which measures how fast the user interface responds to an input.
///
/// This implementation does nothing, so that programs run where the service does not exist. The
/// functions are exported and not inline, so that the maker's library, or a test's recording one,
/// can replace them at link time or by symbol interposition. A product that happens to define one
/// of them replaces it as well, silently.
///
/// **Thread**: called on the one that reports events. **Log**: nothing.
class VORN_API_EXPORT Profiler
{
public:
    /// The process's only instance, made by the first call.
    /// @return never null; not to be deleted
    static Profiler *instance();

    /// Starts a watcher that ends at the next event of a name. Called before each input event is
    /// published.
    /// @param watcher its name, e.g. UIResponseWatcher()
    /// @param event the name of the event that ends it, e.g. UIDrawEvent()
    void createWatcher(const QString &watcher, const QString &event);

    /// @return the name of the watcher that measures the response to an input
    static const QString &UIResponseWatcher();

    /// @return the name of the event reported when the user interface is redrawn
    static const QString &UIDrawEvent();

private:
    Profiler() = default;
};

#endif
