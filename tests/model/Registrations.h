#ifndef MODEL_REGISTRATIONS_H
#define MODEL_REGISTRATIONS_H

#include "KeyCall.h"

#include <string>
#include <vector>

namespace Model {

/// What a product registers for the three keys of a panel on the local bus.
struct Registrations
{
    std::string name; ///< also of a test: letters only
    std::vector<KeyCall> calls;
};

const std::vector<Registrations> &allRegistrations();

} // namespace Model

#endif
