#include "Bitmaps.h"

#include <gmock/gmock.h>

#include <linux/input.h>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

} // namespace

TEST(Bitmaps, HaveTheirFirstBitInTheLowestOfTheFirstByte)
{
    const QByteArray bits = bytes("0180");
    EXPECT_TRUE(testBit(bits, 0));
    EXPECT_FALSE(testBit(bits, 1));
    EXPECT_FALSE(testBit(bits, 7));
    EXPECT_FALSE(testBit(bits, 8));
    EXPECT_TRUE(testBit(bits, 15));
    EXPECT_FALSE(testBit(bits, 16)) << "beyond the end";
    EXPECT_FALSE(testBit(bits, -1));
    EXPECT_FALSE(testBit({}, 0));
    EXPECT_THAT(setBits(bits), ElementsAre(0, 15));
    EXPECT_THAT(setBits({}), IsEmpty());
    EXPECT_THAT(setBits(bytes("ff")), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
}

TEST(Bitmaps, GrowAsBitsAreSet)
{
    QByteArray bits;
    setBit(&bits, 7);
    EXPECT_EQ(bits, bytes("80"));
    setBit(&bits, 0);
    setBit(&bits, 0);
    EXPECT_EQ(bits, bytes("81"));
    setBit(&bits, 8);
    EXPECT_EQ(bits, bytes("8101"));
    setBit(&bits, 31);
    EXPECT_EQ(bits, bytes("81010080"));
}

TEST(Bitmaps, LoseTheZerosAtTheirEndAndGetThemBack)
{
    EXPECT_EQ(withoutTrailingZeros(bytes("000100")), bytes("0001"));
    EXPECT_EQ(withoutTrailingZeros(bytes("0000")), QByteArray());
    EXPECT_EQ(withoutTrailingZeros(bytes("80")), bytes("80"));
    EXPECT_EQ(padded(bytes("0102"), 4), bytes("01020000"));
    EXPECT_EQ(padded(bytes("0102"), 1), bytes("01"));
    EXPECT_EQ(padded(bytes("0102"), 2), bytes("0102"));
}

TEST(Bitmaps, HaveTheSizeOfTheirType)
{
    EXPECT_EQ(codeCount(EV_KEY), KEY_CNT);
    EXPECT_EQ(codeCount(EV_REL), REL_CNT);
    EXPECT_EQ(codeCount(EV_ABS), ABS_CNT);
    EXPECT_EQ(codeCount(EV_MSC), MSC_CNT);
    EXPECT_EQ(codeCount(EV_SW), SW_CNT);
    EXPECT_EQ(codeCount(EV_LED), LED_CNT);
    EXPECT_EQ(codeCount(EV_SND), SND_CNT);
    EXPECT_EQ(codeCount(EV_REP), REP_CNT);
    EXPECT_EQ(codeCount(EV_FF), FF_CNT);
    for (const int type : {EV_SYN, EV_PWR, EV_FF_STATUS, 6, 31, -1})
        EXPECT_EQ(codeCount(type), 0) << type;
    // In words of eight bytes.
    EXPECT_EQ(bitmapSize(EV_KEY), 96);
    EXPECT_EQ(bitmapSize(EV_ABS), 8);
    EXPECT_EQ(bitmapSize(EV_SW), 8);
    EXPECT_EQ(bitmapSize(EV_FF), 16);
    EXPECT_EQ(bitmapSize(EV_SYN), 0);
}
