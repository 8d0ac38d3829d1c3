#include "RealPath.h"

#include "FileCalls.h"

namespace Vorn::Sim {

RealPath::RealPath(const char *path)
    : m_path(path)
{
    if (const FileCallsUse calls = fileCallsFor(path)) {
        calls->translate(path, m_buffer, sizeof(m_buffer));
        m_path = m_buffer;
    }
}

} // namespace Vorn::Sim
