#ifndef EXPEDITION_H
#define EXPEDITION_H

#include <string>

namespace Vorn::Bench {

/// While it lives, if @p isWanted, the kernel closes a node without its grace period. Otherwise a
/// close waits until no processor can still be using the node, ten milliseconds and more, which
/// hides all other costs of a pass.
class Expedition
{
public:
    explicit Expedition(bool isWanted);
    ~Expedition();
    Expedition(const Expedition &) = delete;
    Expedition &operator=(const Expedition &) = delete;

    /// The parameter of a row, which names this condition.
    std::string parameter(const std::string &text) const;

private:
    const bool m_isWanted;
};

} // namespace Vorn::Bench

#endif
