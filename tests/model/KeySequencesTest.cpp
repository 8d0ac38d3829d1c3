#include "InputSubsystem.h"
#include "KeyHandlerModel.h"
#include "LibraryKeys.h"
#include "LogText.h"
#include "Registrations.h"
#include "VirtualClock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <unordered_set>

/*
 *  Every sequence of records, ticks and steps of the wall clock up to a length, in the library and
 * in the model. Walk continues each sequence from the state that the last one left, and merges
 * those that left the same state in both, which reaches far; Replay trusts no state and begins each
 *  sequence with a new handler.
 *
 *  VORN_MODEL_WALK and VORN_MODEL_REPLAY set other lengths.
 */

namespace {

using namespace std::chrono_literals;
using Model::HandlerState;
using Model::KeyHandlerModel;
using Model::LibraryKeys;
using Model::Registrations;
using Model::Trace;
using Vorn::Sim::DeviceDescription;

constexpr int LocalUI = 2;

struct Symbol
{
    enum class Kind { Record, Tick, ClockStep, Invalidate };

    Kind kind;
    int code;
    int value;
    std::chrono::milliseconds step;
};

const std::vector<Symbol> &alphabet()
{
    static const std::vector<Symbol> symbols = [] {
        std::vector<Symbol> result;
        for (int key = 0; key < Model::KeyCount; ++key) {
            for (const int value : {1, 0, 2})
                result.push_back({Symbol::Kind::Record, Model::FirstCode + key, value, 0ms});
        }
        result.push_back({Symbol::Kind::Tick, 0, 0, 50ms});
        result.push_back({Symbol::Kind::ClockStep, 0, 0, 130ms});
        result.push_back({Symbol::Kind::ClockStep, 0, 0, -130ms});
        result.push_back({Symbol::Kind::Invalidate, 0, 0, 0ms});
        return result;
    }();
    return symbols;
}

std::string text(const Symbol &symbol)
{
    switch (symbol.kind) {
    case Symbol::Kind::Record:
        return std::to_string(symbol.code) + "=" + std::to_string(symbol.value);
    case Symbol::Kind::Tick:
        return "tick";
    case Symbol::Kind::Invalidate:
        return "invalidate";
    case Symbol::Kind::ClockStep:
        break;
    }
    return "clock" + std::string(symbol.step > 0ms ? "+" : "")
        + std::to_string(symbol.step.count());
}

std::string text(const std::vector<Symbol> &sequence)
{
    std::string result;
    for (const Symbol &symbol : sequence)
        result += text(symbol) + " ";
    return result;
}

int lengthFrom(const char *variable, int usual)
{
    const char *const value = std::getenv(variable);
    return value ? std::atoi(value) : usual;
}

class KeySequences : public testing::TestWithParam<Registrations>
{
protected:
    KeySequences()
    {
        subsystem.setRecording(false);
        subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_HOST, {30, 31, 32}));
        listener = std::make_unique<LinuxInputListener>(
            nullptr, QStringLiteral("/dev/input/event0"), LinuxInputListener::Key);
    }

    /// Registers with the model and, if there is one, with a handler; both log what they find odd.
    static void registerWith(const Registrations &registrations, KeyHandlerModel &model,
                             Trace &expected, LibraryKeys *library)
    {
        model.setBus(LocalUI);
        for (const Model::KeyCall &call : registrations.calls) {
            model.call(call, expected);
            if (library)
                Model::call(library->handler(), call);
        }
    }

    void stepClock(const Symbol &symbol)
    {
        if (symbol.step != 0ms)
            clock.stepWallClock(symbol.step);
    }

    void stepLibrary(LibraryKeys &library, const Symbol &symbol, Trace &seen)
    {
        if (symbol.kind == Symbol::Kind::Record) {
            library.process(
                {{Model::KeyType, symbol.code, symbol.value, clock.now()}, {0, 0, 0, clock.now()}});
        } else if (symbol.kind == Symbol::Kind::Tick && library.isTiming()) {
            library.tick();
            seen.sortTick();
        } else if (symbol.kind == Symbol::Kind::Invalidate) {
            library.handler().invalidate();
        }
    }

    void stepModel(KeyHandlerModel &model, const Symbol &symbol, Trace &expected)
    {
        if (symbol.kind == Symbol::Kind::Record) {
            model.process({{Model::KeyType, symbol.code, symbol.value, clock.now()}}, expected);
        } else if (symbol.kind == Symbol::Kind::Tick && model.longPress().isTiming()) {
            model.tick(clock.now(), {}, expected);
            expected.sortTick();
        } else if (symbol.kind == Symbol::Kind::Invalidate) {
            model.invalidate();
        }
    }

    /// @return whether both did the same
    static testing::AssertionResult compare(const Trace &seen, const Trace &expected, bool isTiming,
                                            bool isExpectedToTime)
    {
        if (seen.observations() == expected.observations() && isTiming == isExpectedToTime)
            return testing::AssertionSuccess();
        return testing::AssertionFailure()
            << "library:\n"
            << Model::text(seen.observations()) << (isTiming ? "timer runs\n" : "timer stands\n")
            << "model:\n"
            << Model::text(expected.observations())
            << (isExpectedToTime ? "timer runs\n" : "timer stands\n");
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    std::unique_ptr<LinuxInputListener> listener;
};

/// A state of both, and the sequence that leads there.
struct Place
{
    HandlerState library;
    KeyHandlerModel model;
    std::int64_t now;
    std::vector<signed char> sequence;
};

std::vector<Symbol> symbolsOf(const std::vector<signed char> &sequence)
{
    std::vector<Symbol> result;
    for (const signed char index : sequence)
        result.push_back(alphabet()[static_cast<std::size_t>(index)]);
    return result;
}

std::string keyOf(const HandlerState &library, const KeyHandlerModel &model, std::int64_t now)
{
    static_assert(std::has_unique_object_representations_v<HandlerState>, "no padding");
    std::string key(sizeof library, '\0');
    std::memcpy(key.data(), &library, sizeof library);
    return key + model.state(now);
}

class KeyWalk : public KeySequences
{
protected:
    struct Totals
    {
        double sequences = 0;
        std::size_t states = 0;
        std::size_t steps = 0;
        std::size_t observations = 0;
    };

    /// Walks all sequences of up to @p length; ends at the first difference, which is a shortest
    /// one.
    testing::AssertionResult walk(const Registrations &inLibrary, const Registrations &inModel,
                                  int length, bool isLogging)
    {
        Trace seen(isLogging);
        Trace expected(isLogging);
        const Model::BusAndLog observed(seen);
        LibraryKeys library(QStringLiteral("panel"), listener.get(), seen);
        KeyHandlerModel model("panel");
        registerWith(inLibrary, model, expected, &library);
        if (&inLibrary != &inModel) {
            model = KeyHandlerModel("panel");
            registerWith(inModel, model, expected, nullptr);
        } else if (const auto same = compare(seen, expected, false, false); !same) {
            return testing::AssertionFailure() << "registrations\n" << same.message();
        }

        const std::int64_t start = clock.now();
        std::unordered_set<std::string> known{keyOf(library.state(start), model, start)};
        std::vector<Place> places{{library.state(start), model, start, {}}};
        totals = {};
        for (int depth = 0; depth < length && !places.empty(); ++depth) {
            totals.sequences = totals.sequences * static_cast<double>(alphabet().size())
                + static_cast<double>(alphabet().size());
            std::vector<Place> next;
            for (const Place &place : places) {
                for (std::size_t index = 0; index < alphabet().size(); ++index) {
                    const Symbol &symbol = alphabet()[index];
                    clock.stepWallClock(std::chrono::milliseconds(place.now - clock.now()));
                    library.setState(place.library, place.now);
                    KeyHandlerModel stepped = place.model;
                    seen.clear();
                    expected.clear();
                    stepClock(symbol);
                    stepLibrary(library, symbol, seen);
                    stepModel(stepped, symbol, expected);
                    ++totals.steps;
                    totals.observations += seen.observations().size();
                    std::vector<signed char> sequence = place.sequence;
                    sequence.push_back(static_cast<signed char>(index));
                    if (const auto same = compare(seen, expected, library.isTiming(),
                                                  stepped.longPress().isTiming());
                        !same)
                    {
                        return testing::AssertionFailure() << text(symbolsOf(sequence)) << "\n"
                                                           << same.message();
                    }
                    const std::int64_t now = clock.now();
                    const HandlerState state = library.state(now);
                    if (known.insert(keyOf(state, stepped, now)).second)
                        next.push_back({state, std::move(stepped), now, std::move(sequence)});
                }
            }
            places = std::move(next);
        }
        totals.states = known.size();
        return testing::AssertionSuccess();
    }

    Totals totals;
};

TEST_P(KeyWalk, LibraryAndModelDoTheSame)
{
    const int length = lengthFrom("VORN_MODEL_WALK", VORN_MODEL_WALK);
    EXPECT_TRUE(walk(GetParam(), GetParam(), length, false));
    std::cout << GetParam().name << ": " << totals.sequences << " sequences of up to " << length
              << ", " << totals.states << " states, " << totals.steps << " steps, "
              << totals.observations << " observations\n";
    EXPECT_GT(totals.observations, 0U);
}

TEST_P(KeyWalk, LibraryAndModelLogTheSame)
{
    const int length = lengthFrom("VORN_MODEL_LOG", VORN_MODEL_LOG);
    EXPECT_TRUE(walk(GetParam(), GetParam(), length, true));
    EXPECT_GT(totals.observations, 0U);
}

TEST_F(KeyWalk, FindsADifferenceByAShortestSequence)
{
    const Registrations inLibrary = {
        "", {Model::KeyCall::deferred(30, 1), Model::KeyCall::longPress(30, false, {100})}};
    const Registrations inModel = {
        "", {Model::KeyCall::deferred(30, 1), Model::KeyCall::longPress(30, true, {100})}};
    const auto same = walk(inLibrary, inModel, 6, false);
    EXPECT_FALSE(same);
    EXPECT_EQ(std::string(same.message()).substr(0, 25), "30=1 tick tick tick tick ");
}

class KeyReplay : public KeySequences
{
protected:
    testing::AssertionResult replay(const Registrations &registrations,
                                    const std::vector<Symbol> &sequence)
    {
        Trace expected(false);
        LibraryKeys library(QStringLiteral("panel"), listener.get(), seen);
        KeyHandlerModel model("panel");
        registerWith(registrations, model, expected, &library);
        seen.clear();
        for (const Symbol &symbol : sequence) {
            seen.clear();
            expected.clear();
            stepClock(symbol);
            stepLibrary(library, symbol, seen);
            stepModel(model, symbol, expected);
            if (const auto same =
                    compare(seen, expected, library.isTiming(), model.longPress().isTiming());
                !same)
                return same;
        }
        return testing::AssertionSuccess();
    }

    Trace seen{false};
};

TEST_P(KeyReplay, LibraryAndModelDoTheSame)
{
    const Model::BusAndLog observed(seen);
    const int length = lengthFrom("VORN_MODEL_REPLAY", VORN_MODEL_REPLAY);
    std::vector<std::size_t> indices(static_cast<std::size_t>(length), 0);
    std::vector<Symbol> sequence(indices.size(), alphabet().front());
    int sequences = 0;
    for (bool isOver = false; !isOver; ++sequences) {
        const auto same = replay(GetParam(), sequence);
        if (!same)
            FAIL() << text(sequence) << "\n" << same.message();
        isOver = true;
        for (std::size_t i = indices.size(); i-- > 0 && isOver;) {
            indices[i] = (indices[i] + 1) % alphabet().size();
            sequence[i] = alphabet()[indices[i]];
            isOver = indices[i] == 0;
        }
    }
    std::cout << GetParam().name << ": " << sequences << " sequences of " << length << '\n';
}

std::string nameOf(const testing::TestParamInfo<Registrations> &info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Every, KeyWalk, testing::ValuesIn(Model::allRegistrations()), nameOf);
INSTANTIATE_TEST_SUITE_P(Every, KeyReplay, testing::ValuesIn(Model::allRegistrations()), nameOf);

} // namespace
