#include "LibraryProduct.h"
#include "ProductModel.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdlib>
#include <iostream>

/*
 *  Random products, in which everything may happen, at any time and from inside any slot.
 * RapidCheck prints its seed at the start and, for a failure, the shortest steps that it finds and
 * the setting of RC_PARAMS that repeats it. A longer series:
 *
 *    RC_PARAMS="max_success=20000" vorn_model_tests --gtest_filter='RandomSequences.*'
 */

namespace {

using Model::Bytes;
using Model::LibraryProduct;
using Model::ProductModel;
using Model::ProductPlan;
using Model::Step;

/// What was compared, to prove that the sequences reach what they are to test.
struct Totals
{
    int steps = 0;
    int nested = 0;
    int published = 0;
    int longPresses = 0;
    int chords = 0;

    void add(const Model::Observations &observations)
    {
        using Kind = Model::Observation::Kind;
        ++steps;
        for (const Model::Observation &observation : observations) {
            published += observation.kind == Kind::Published ? 1 : 0;
            longPresses += observation.kind == Kind::LongPress ? 1 : 0;
            chords += observation.kind == Kind::Keys && observation.numbers[0] == 2 ? 1 : 0;
            nested += observation.text.rfind("in a slot", 0) == 0 ? 1 : 0;
        }
    }
};

Totals totals;

/// @return what the library did otherwise than the model; empty if nothing
std::string difference(const ProductPlan &plan, const std::vector<Step> &steps)
{
    LibraryProduct library(plan);
    ProductModel model(plan, library.now());
    std::string story = text(plan);
    const auto compare = [&]() -> std::string {
        const Model::Observations &seen = library.trace().observations();
        const Model::Observations &expected = model.trace().observations();
        totals.add(seen);
        if (seen == expected)
            return {};
        return story + "library:\n" + text(seen) + "model:\n" + text(expected);
    };
    std::string found = compare();
    for (const Step &step : steps) {
        if (!found.empty())
            return found;
        story += text(step);
        library.perform(step);
        model.perform(step, library.notified());
        found = compare();
    }
    return found;
}

using ByteVector = std::vector<std::uint8_t>;

/// Bytes of all values, whatever the size that RapidCheck has come to. Failures shrink by leaving
/// out whole steps: shrinking bytes as well would take minutes.
rc::Gen<ByteVector> bytes(std::size_t count)
{
    return rc::gen::noShrink(rc::gen::container<ByteVector>(
        count, rc::gen::resize(rc::kNominalSize, rc::gen::arbitrary<std::uint8_t>())));
}

void expectSame()
{
    const ByteVector planBytes = *bytes(200);
    const auto stepBytes =
        *rc::gen::scale(2, rc::gen::container<std::vector<ByteVector>>(bytes(30)));
    Bytes planDecisions(planBytes);
    const ProductPlan plan = planFrom(planDecisions);
    std::vector<Step> steps;
    for (const ByteVector &one : stepBytes) {
        Bytes decisions(one);
        const Step step = stepFrom(decisions);
        steps.insert(steps.end(), step.times, step);
    }
    const std::string found = difference(plan, steps);
    if (!found.empty())
        RC_FAIL(found);
}

TEST(RandomSequences, LibraryAndModelDoTheSame)
{
    EXPECT_TRUE(rc::check("library and model do the same", &expectSame));
    std::cout << totals.steps << " steps, " << totals.nested << " calls in slots, "
              << totals.published << " events, " << totals.longPresses << " long presses, "
              << totals.chords << " chords\n";
    // Repeating a failure may need none of these.
    if (std::getenv("RC_PARAMS") == nullptr) {
        EXPECT_GT(totals.nested, 0);
        EXPECT_GT(totals.published, 0);
        EXPECT_GT(totals.longPresses, 0);
        EXPECT_GT(totals.chords, 0);
    }
}

} // namespace
