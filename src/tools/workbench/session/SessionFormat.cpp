#include "SessionFormat.h"

namespace Vorn::Workbench {

namespace {

using Step = DetectorStep::What;
using Outcome = RecordOutcome::What;

template <typename Value>
struct Named
{
    Value value;
    const char *name;
};

// One table for both directions, so that nothing can be written that is not read back.
constexpr Named<Step> steps[] = {
    {Step::LongPressDue, "long-press-due"},
    {Step::LongPressEnded, "long-press-ended"},
    {Step::FirstKeyWithdrawn, "first-key-withdrawn"},
    {Step::ChordFound, "chord-found"},
    {Step::ChordReleased, "chord-released"},
    {Step::Dropped, "dropped"},
    {Step::Forgotten, "forgotten"},
};

constexpr Named<Outcome> outcomes[] = {
    {Outcome::Published, "published"}, {Outcome::Held, "held"},         {Outcome::Chord, "chord"},
    {Outcome::Dropped, "dropped"},     {Outcome::Unmapped, "unmapped"}, {Outcome::Unread, "unread"},
    {Outcome::NotTaken, "not-taken"},  {Outcome::Open, "open"},
};

template <typename Value, std::size_t size>
QString nameIn(const Named<Value> (&table)[size], Value value)
{
    for (const Named<Value> &candidate : table) {
        if (candidate.value == value)
            return QString::fromLatin1(candidate.name);
    }
    return {};
}

template <typename Value, std::size_t size>
std::optional<Value> valueIn(const Named<Value> (&table)[size], const QString &name)
{
    for (const Named<Value> &candidate : table) {
        if (QLatin1String(candidate.name) == name)
            return candidate.value;
    }
    return std::nullopt;
}

} // namespace

QString detectorStepName(Step step)
{
    return nameIn(steps, step);
}

std::optional<Step> detectorStep(const QString &name)
{
    return valueIn(steps, name);
}

QString outcomeName(Outcome outcome)
{
    return nameIn(outcomes, outcome);
}

std::optional<Outcome> outcome(const QString &name)
{
    return valueIn(outcomes, name);
}

} // namespace Vorn::Workbench
