#include "PlannedDuration.h"

#include "Playback.h"
#include "Scenario.h"

#include <algorithm>
#include <variant>

namespace Vorn::Workbench {

namespace {

/// The time after each step, in ms.
struct PlannedTime
{
    qint64 now = 0;
    qint64 action = 0; ///< when the last action began
    qint64 playbackEnd = 0;

    void add(const ScenarioStep &step, const LoadedScenario &loaded)
    {
        const StepKind &what = step.what;
        if (const auto *wait = std::get_if<Step::Wait>(&what)) {
            now += wait->duration;
        } else if (const auto *nothing = std::get_if<Step::ExpectNothing>(&what)) {
            now += nothing->duration;
        } else if (std::holds_alternative<Step::WaitForEnd>(what)) {
            now = std::max(now, playbackEnd);
        } else if (const auto *event = std::get_if<Step::ExpectEvent>(&what)) {
            now = std::max(now, action + event->earliest.value_or(0));
        } else if (isAction(what)) {
            if (!step.continues)
                action = now;
            if (const auto *play = std::get_if<Step::Play>(&what)) {
                for (const RecordedNode &node : loaded.recordings.value(play->file).nodes)
                    playbackEnd = std::max(playbackEnd, now + playbackDuration(node.events));
            }
        }
    }
};

} // namespace

qint64 plannedDuration(const LoadedScenario &loaded)
{
    PlannedTime time;
    for (const ScenarioStep &step : loaded.scenario.steps)
        time.add(step, loaded);
    return std::max(time.now, time.playbackEnd);
}

} // namespace Vorn::Workbench
