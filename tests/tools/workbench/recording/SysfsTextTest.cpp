#include "SysfsText.h"

#include <gmock/gmock.h>

#include <linux/input.h>

#include <string>

using namespace Vorn::Workbench;

namespace {

/// The bits of words as hexadecimal digits, lowest byte first; "(none)" for words that are none.
std::string bitsOf(const QByteArray &words, int wordSize = 8)
{
    const auto bits = bitsOfWords(words, wordSize);
    return bits ? bits->toHex().toStdString() : "(none)";
}

} // namespace

TEST(SysfsText, HasWordsWithTheHighestFirst)
{
    EXPECT_EQ(bitsOf("1"), "01");
    EXPECT_EQ(bitsOf("1 0"), "000000000000000001");
    EXPECT_EQ(bitsOf("1 0", 4), "0000000001");
    EXPECT_EQ(bitsOf("123456789abcdef0"), "f0debc9a78563412");
    EXPECT_EQ(bitsOf("12345678", 4), "78563412");
    EXPECT_EQ(bitsOf("0"), "");
    EXPECT_EQ(bitsOf(""), "");
}

TEST(SysfsText, HasNoWordsThatAreTooLongOrTooMany)
{
    EXPECT_EQ(bitsOf("123456789", 4), "(none)");
    EXPECT_EQ(bitsOf("0123456789abcdef0"), "(none)");
    EXPECT_EQ(bitsOf("g"), "(none)");
    EXPECT_EQ(bitsOf("1 x"), "(none)");
    // 96 bytes for keys, more than for anything else.
    EXPECT_EQ(bitsOf("1" + QByteArray(" 0").repeated(11)), std::string(88 * 2, '0') + "01");
    EXPECT_EQ(bitsOf("1" + QByteArray(" 0").repeated(12)), "(none)");
    EXPECT_EQ(bitsOf("1" + QByteArray(" 0").repeated(23), 4), std::string(92 * 2, '0') + "01");
    EXPECT_EQ(bitsOf("1" + QByteArray(" 0").repeated(24), 4), "(none)");
}

TEST(SysfsText, IsWrittenInWholeWords)
{
    EXPECT_EQ(wordsOfBits({}).toStdString(), "0000000000000000");
    EXPECT_EQ(wordsOfBits(QByteArray::fromHex("0102")).toStdString(), "0000000000000201");
    EXPECT_EQ(wordsOfBits(QByteArray::fromHex("0102030405060708")).toStdString(),
              "0807060504030201");
    EXPECT_EQ(wordsOfBits(QByteArray::fromHex("010203040506070809")).toStdString(),
              "0000000000000009 0807060504030201");
}

TEST(SysfsText, NamesTheTypesThatSysfsLists)
{
    EXPECT_EQ(typesByName(),
              (QMap<QByteArray, int>{{"ev", EV_SYN},
                                     {"key", EV_KEY},
                                     {"rel", EV_REL},
                                     {"abs", EV_ABS},
                                     {"msc", EV_MSC},
                                     {"led", EV_LED},
                                     {"snd", EV_SND},
                                     {"ff", EV_FF},
                                     {"sw", EV_SW}}));
}

TEST(SysfsText, KnowsTheLastKeyOfAnAlias)
{
    EXPECT_EQ(lastKeyOfAlias("input:b0019v0001p0001e0001-e0,1,k20,ram"), 0x20);
    EXPECT_EQ(lastKeyOfAlias("input:b0019v0001p0001e0001-e0,1,k0,40,1C6,ramlsfw"), 0x1c6);
    EXPECT_EQ(lastKeyOfAlias("input:b0019v0001p0001e0001-e0,1,kramlsfw"), -1);
    EXPECT_EQ(lastKeyOfAlias("input:b0019v0001p0001e0001-e0,1,k20"), -1);
    EXPECT_EQ(lastKeyOfAlias("usb:v046DpC31C"), -1);
    EXPECT_EQ(lastKeyOfAlias(""), -1);
}
