#include "SessionFormat.h"

namespace Vorn::Workbench {

namespace {

using What = DetectorStep::What;

struct StepName
{
    What step;
    const char *name;
};

// One table for both directions, so that nothing can be written that is not read back.
constexpr StepName stepNames[] = {
    {What::LongPressDue, "long-press-due"},           {What::LongPressEnded, "long-press-ended"},
    {What::FirstKeyWithdrawn, "first-key-withdrawn"}, {What::ChordFound, "chord-found"},
    {What::ChordReleased, "chord-released"},          {What::Dropped, "dropped"},
};

} // namespace

QString detectorStepName(What step)
{
    for (const StepName &candidate : stepNames) {
        if (candidate.step == step)
            return QString::fromLatin1(candidate.name);
    }
    return {};
}

std::optional<What> detectorStep(const QString &name)
{
    for (const StepName &candidate : stepNames) {
        if (QLatin1String(candidate.name) == name)
            return candidate.step;
    }
    return std::nullopt;
}

} // namespace Vorn::Workbench
