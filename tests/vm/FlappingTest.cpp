#include "GuestTest.h"
#include "UinputDevice.h"

#include <QFileSystemWatcher>

#include <atomic>
#include <chrono>
#include <iostream>
#include <memory>
#include <random>
#include <thread>

namespace {

using testing::Contains;

// How often the folder comes and goes at random in one test; VORN_FLAPPING_ROUNDS says otherwise.
constexpr int usualRounds = 20;

UinputDescription panel(const std::string &name)
{
    return {name, BUS_HOST, {KEY_OK}, {}};
}

/// A receiver with a loose contact: the folder vanishes with its last node, and comes back with it.
class FlappingTest : public GuestTest
{
protected:
    /// Plugs one device in and out, at random moments, while the library runs.
    void flap(std::mt19937 &random)
    {
        const int times = std::uniform_int_distribution<>(1, 5)(random);
        std::atomic<bool> isDone{false};
        std::thread contact([&] {
            std::uniform_int_distribution<> microseconds(0, 6000);
            for (int i = 0; i < times; ++i) {
                const UinputDevice device(panel("loose"));
                std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
            }
            isDone = true;
        });
        EXPECT_TRUE(waitFor([&] { return isDone.load(); }));
        contact.join();
    }
};

TEST_F(FlappingTest, LeavesNobodyDeaf)
{
    const int wanted = qEnvironmentVariableIntValue("VORN_FLAPPING_ROUNDS");
    const int rounds = wanted > 0 ? wanted : usualRounds;
    std::random_device seeds;
    const unsigned int seed = seeds();
    std::mt19937 random(seed);
    int deaf = 0;
    for (int round = 0; round < rounds; ++round) {
        Devices devices;
        flap(random);
        // A node that was not there before: the other one may be taken for the loose device.
        const UinputDevice first(panel("first"));
        const UinputDevice second(panel("second"));
        const auto isHeard = [&] {
            return testing::Matches(Contains("add " + second.node().toStdString() + " second"))(
                devices.calls);
        };
        if (!waitFor(isHeard, 5000)) {
            ++deaf;
            std::cout << "round " << round << ", watched: "
                      << devices.findChild<QFileSystemWatcher *>()
                             ->directories()
                             .join(QLatin1Char(' '))
                             .toStdString()
                      << '\n';
        }
    }
    std::cout << rounds << " rounds with seed " << seed << ", " << deaf << " deaf\n";
    EXPECT_EQ(deaf, 0);
}

} // namespace
