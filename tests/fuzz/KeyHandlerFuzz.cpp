#include "FuzzedProcess.h"
#include "HandlerPair.h"

#include <array>
#include <cstdint>

/*
 *  Registrations and batches that no device sends, and the model as the judge. The first byte
 * decides whether log lines are compared as well.
 */

namespace {

using Model::Bytes;
using Model::HandlerPair;
using Model::Record;

constexpr int firstCode = 30;
constexpr std::size_t longestInput = 4096;

Record recordFrom(Bytes &bytes, std::int64_t now)
{
    constexpr std::array<int, 8> types{{1, 1, 1, 1, 1, 1, 0, 5}};
    constexpr std::array<int, 8> values{{1, 0, 1, 0, 2, 1, -1, 0x7fffffff}};
    // From long ago and the year 2106, and before the epoch.
    constexpr std::array<std::int64_t, 8> ages{
        {0, 0, 0, 50, -100, 1'000'000'000'000, 2'000'000'000'000, -2'500'000'000'000}};
    Record record;
    record.type = types[static_cast<std::size_t>(bytes.below(8))];
    record.value = values[static_cast<std::size_t>(bytes.below(8))];
    const std::int64_t age = ages[static_cast<std::size_t>(bytes.below(8))];
    record.msecs = now - age;
    const int code = bytes.below(64);
    record.code = code < 63 ? firstCode + code % Model::KeyCount : 0xffff;
    return record;
}

void play(Bytes &bytes)
{
    prepareFuzzedProcess();
    // Only here, since libFuzzer measures its own time.
    Vorn::Sim::VirtualClock clock;
    HandlerPair pair(clock, nullptr, 0, bytes.below(4) == 0);
    while (!bytes.isOver()) {
        const int what = bytes.below(16);
        if (what < 4) {
            pair.call(keyCallFrom(bytes, firstCode));
        } else if (what < 10) {
            std::vector<Record> batch;
            for (int count = bytes.below(4); count >= 0; --count)
                batch.push_back(recordFrom(bytes, clock.now()));
            pair.process(batch);
        } else if (what < 14) {
            pair.tick();
        } else if (what == 14) {
            clock.stepWallClock(std::chrono::milliseconds(bytes.below(256) * 20 - 2500));
        } else {
            pair.invalidate();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // Whatever is longer repeats itself.
    const std::vector<std::uint8_t> input(data, data + std::min(size, longestInput));
    Bytes bytes(input);
    play(bytes);
    return 0;
}
