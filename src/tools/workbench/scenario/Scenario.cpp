#include "Scenario.h"

#include <algorithm>

namespace Vorn::Workbench {

bool Scenario::hasExpectations() const
{
    // `ignore events` is not one: alone it would make every event that follows it a failure.
    return std::any_of(steps.begin(), steps.end(), [](const ScenarioStep &step) {
        return std::holds_alternative<Step::ExpectEvent>(step.what)
            || std::holds_alternative<Step::ExpectNothing>(step.what)
            || std::holds_alternative<Step::ExpectIdentifier>(step.what);
    });
}

} // namespace Vorn::Workbench
