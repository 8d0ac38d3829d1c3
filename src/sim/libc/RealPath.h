#ifndef VORN_SIM_REALPATH_H
#define VORN_SIM_REALPATH_H

#include <climits>

namespace Vorn::Sim {

/// A path as the real file system knows it: a simulated one is translated, any other is kept.
class RealPath
{
public:
    /// @param path may be null; must outlive this object
    explicit RealPath(const char *path);
    RealPath(const RealPath &) = delete;
    RealPath &operator=(const RealPath &) = delete;

    const char *get() const { return m_path; }

private:
    const char *m_path;
    char m_buffer[PATH_MAX];
};

} // namespace Vorn::Sim

#endif
