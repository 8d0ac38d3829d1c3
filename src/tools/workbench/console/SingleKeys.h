#ifndef VORN_WORKBENCH_SINGLEKEYS_H
#define VORN_WORKBENCH_SINGLEKEYS_H

namespace Vorn::Workbench {

/// Makes the terminal of the standard input give single keys, without Enter and without echo, while
/// it is alive. Does nothing unless @p shownOn, where the keys are explained, is a terminal as
/// well. Only one may exist at a time.
///
/// Every way out leaves the terminal as it was: exit(), signals that end or stop the process. When
/// that goes on, keys are single again.
class SingleKeys
{
public:
    explicit SingleKeys(int shownOn);
    ~SingleKeys();
    SingleKeys(const SingleKeys &) = delete;
    SingleKeys &operator=(const SingleKeys &) = delete;

    /// Whether it does anything.
    static bool areOn();

    /// Leaves the terminal as it was, before the process ends. Safe in a signal handler.
    static void undo();
};

} // namespace Vorn::Workbench

#endif
