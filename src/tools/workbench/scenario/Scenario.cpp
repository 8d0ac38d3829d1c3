#include "Scenario.h"

#include <algorithm>

namespace Vorn::Workbench {

bool isAction(const StepKind &step)
{
    return !std::holds_alternative<Step::Wait>(step)
        && !std::holds_alternative<Step::WaitForEnd>(step)
        && !std::holds_alternative<Step::IgnoreEvents>(step) && !isExpectation(step);
}

bool isExpectation(const StepKind &step)
{
    // `ignore events` alone would make every event that follows it a failure.
    return std::holds_alternative<Step::ExpectEvent>(step)
        || std::holds_alternative<Step::ExpectNothing>(step)
        || std::holds_alternative<Step::ExpectIdentifier>(step);
}

bool Scenario::hasExpectations() const
{
    return std::any_of(steps.begin(), steps.end(),
                       [](const ScenarioStep &step) { return isExpectation(step.what); });
}

} // namespace Vorn::Workbench
