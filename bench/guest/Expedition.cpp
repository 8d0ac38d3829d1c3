#include "Expedition.h"

#include <fstream>
#include <stdexcept>

namespace Vorn::Bench {

namespace {

const char *const expediteFile = "/sys/kernel/rcu_expedited";

bool expedite(const char *value)
{
    std::ofstream file(expediteFile);
    return static_cast<bool>(file << value << std::flush);
}

} // namespace

Expedition::Expedition(bool isWanted)
    : m_isWanted(isWanted)
{
    if (m_isWanted && !expedite("1"))
        throw std::runtime_error(std::string("cannot write ") + expediteFile);
}

Expedition::~Expedition()
{
    if (m_isWanted)
        expedite("0");
}

std::string Expedition::parameter(const std::string &text) const
{
    return m_isWanted ? text + " rcu_expedited" : text;
}

} // namespace Vorn::Bench
