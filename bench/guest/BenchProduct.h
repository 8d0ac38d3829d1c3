#ifndef BENCHPRODUCT_H
#define BENCHPRODUCT_H

#include "BasicInputHandler.h"

namespace Vorn::Bench {

/// A product that handles, on every device, the keys KEY_OK and KEY_VOLUMEUP, the latter with a
/// repeating long press, and a jack.
class BenchProduct : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &name) override;
    void removeDevice(const QString &device) override;

    int deviceCount = 0;
};

/// Runs the event loop until the first pass of a manager constructed just before has returned.
void waitForFirstPass();

/// Throws unless @p product has found @p count devices.
void requireDevices(const BenchProduct &product, int count);

} // namespace Vorn::Bench

#endif
