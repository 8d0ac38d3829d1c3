#ifndef VORN_WORKBENCH_OUTPUTWATCH_H
#define VORN_WORKBENCH_OUTPUTWATCH_H

#include <QObject>

#include <functional>

namespace Vorn::Workbench {

/// Calls back, once, when the reader of the standard output has gone, even if nothing is printed.
/// From then on flush() fails.
class OutputWatch : public QObject
{
public:
    explicit OutputWatch(std::function<void()> callback);
};

} // namespace Vorn::Workbench

#endif
