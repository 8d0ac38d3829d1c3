#include "LineReader.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace Vorn::Workbench;
using testing::ElementsAre;

namespace {

std::vector<std::string> fieldsOf(std::string_view line)
{
    std::vector<std::string> fields;
    for (auto field = takeField(&line); !field.empty(); field = takeField(&line))
        fields.emplace_back(field);
    return fields;
}

} // namespace

TEST(LineReader, CountsLinesFromOneWithOrWithoutALastEnd)
{
    const QByteArray text = "a\n\nb";
    LineReader lines(text);
    std::vector<std::string> read;
    while (lines.next())
        read.push_back(std::to_string(lines.number()) + std::string(lines.line()));
    EXPECT_THAT(read, ElementsAre("1a", "2", "3b"));
    EXPECT_FALSE(lines.next());
    EXPECT_EQ(lines.number(), 3);
    EXPECT_FALSE(LineReader(QByteArray()).next());
}

TEST(LineReader, SplitsALineAtBlanks)
{
    EXPECT_THAT(fieldsOf("  E: 1.5\t0001  \r"), ElementsAre("E:", "1.5", "0001"));
    EXPECT_THAT(fieldsOf(" \t"), ElementsAre());
}

TEST(LineReader, TakesWholeNumbersOnly)
{
    EXPECT_EQ(toNumber<quint16>("ffff", 16), 65535);
    EXPECT_EQ(toNumber<qint32>("-12"), -12);
    for (const char *text : {"", "10000", "-1", "+1", " 1", "1 ", "0x1", "g"})
        EXPECT_EQ(toNumber<quint16>(text, 16), std::nullopt) << text;
}

TEST(LineReader, TakesPairsOfHexadecimalDigitsOnly)
{
    EXPECT_EQ(toBytes("00aFf0"), QByteArray("\x00\xaf\xf0", 3));
    EXPECT_EQ(toBytes(""), QByteArray());
    for (const char *text : {"0", "00a", "0g", "g0", "0G", "G0", "0/", "0:", "0@", "0`", "00 "})
        EXPECT_EQ(toBytes(text), std::nullopt) << text;
}
