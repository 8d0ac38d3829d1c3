#include "TextPosition.h"

#include <gmock/gmock.h>

using namespace Vorn;

TEST(TextPosition, CountsLinesAndCharactersFromOne)
{
    const QByteArray text = "ab\n\xC3\xA4z\n";
    const auto at = [&](int offset) {
        const TextPosition position = positionOf(text, offset);
        return std::make_pair(position.line, position.column);
    };
    EXPECT_EQ(at(0), std::make_pair(1, 1));
    EXPECT_EQ(at(2), std::make_pair(1, 3));
    EXPECT_EQ(at(3), std::make_pair(2, 1));
    // One character of two bytes.
    EXPECT_EQ(at(5), std::make_pair(2, 2));
    EXPECT_EQ(at(-7), std::make_pair(1, 1));
    EXPECT_EQ(at(99), std::make_pair(3, 1));
}
