#include "TomlValue.h"

#include <gmock/gmock.h>

using namespace Vorn;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string errorIn(const QByteArray &text)
{
    Findings findings;
    EXPECT_FALSE(parseToml(text, &findings)) << text.toStdString();
    const Diagnostics diagnostics = findings.toDiagnostics(QStringLiteral("f"));
    EXPECT_EQ(diagnostics.size(), 1);
    return diagnostics.value(0).toString().toStdString();
}

TomlValue parsed(const QByteArray &text)
{
    Findings findings;
    const auto value = parseToml(text, &findings);
    EXPECT_TRUE(value) << text.toStdString();
    return value.value_or(TomlValue());
}

/// "2:3", with the member's name in front.
std::string place(const TomlValue &value)
{
    const auto text = [](const TextPosition &position) {
        return std::to_string(position.line) + ":" + std::to_string(position.column);
    };
    return value.key.toStdString() + " " + text(value.keyPosition) + " " + text(value.position);
}

} // namespace

TEST(TomlValue, HasItsMembersInTheOrderOfTheFile)
{
    std::vector<std::string> places;
    for (const TomlValue &member : parsed("z = 1\n\"ä b\" = { x = [ 1 ] }\na = true").children)
        places.push_back(place(member));
    EXPECT_THAT(places, ElementsAre("z 1:1 1:5", "ä b 2:1 2:9", "a 3:1 3:5"));
}

TEST(TomlValue, CountsColumnsInCharacters)
{
    const TomlValue root = parsed("a = { \"é\" = 1, b = 2 }");
    EXPECT_EQ(place(*root.children.at(0).member(QStringLiteral("b"))), "b 1:16 1:20");
}

TEST(TomlValue, TellsItsType)
{
    const TomlValue root =
        parsed("s = 'x'\ni = -3\nf = 1.5\nb = true\nd = 1979-05-27\nl = []\nt = {}");
    const auto &members = root.children;
    ASSERT_EQ(members.size(), 7U);
    EXPECT_EQ(members.at(0).string, QStringLiteral("x"));
    EXPECT_EQ(members.at(1).integer, -3);
    EXPECT_EQ(members.at(1).numberText(), QStringLiteral("-3"));
    EXPECT_EQ(members.at(2).fraction, 1.5);
    EXPECT_EQ(members.at(2).numberText(), QStringLiteral("1.5"));
    EXPECT_EQ(parsed("a = 700.0").children.at(0).numberText(), QStringLiteral("700.0"));
    EXPECT_EQ(members.at(3).boolean, true);
    std::vector<std::string> names;
    for (const TomlValue &member : members)
        names.push_back(member.typeName.toStdString());
    EXPECT_THAT(names,
                ElementsAre("a string", "a number", "a number", "true or false", "a date or time",
                            "a list", "a table"));
    EXPECT_FALSE(members.at(0).member(QStringLiteral("x")));
}

TEST(TomlValue, ReportsASyntaxErrorWithItsPlaceAndAHint)
{
    EXPECT_EQ(errorIn("a = VolumeUp"),
              "f:1:5: error: TOML error while parsing value: could not determine value type; "
              "strings need double quotes");
    EXPECT_THAT(errorIn("[d]\nK = 1\nK = 2"),
                testing::AllOf(HasSubstr("f:3:"),
                               testing::EndsWith("; to register a code twice, give it a list: "
                                                 "[{ … }, { … }]")));
    const std::string another = "; write [[device]] and [[device.handler]] to add another one";
    EXPECT_THAT(errorIn("[[device]]\n[device]"), testing::EndsWith(another));
    EXPECT_THAT(errorIn("[device]\n[device]"), testing::EndsWith(another));
    EXPECT_THAT(
        errorIn("a = { b = 1, }"),
        testing::EndsWith("; a table in braces is on one line, without a comma at its end"));
    EXPECT_THAT(errorIn("a = \"\xff\""), HasSubstr(": TOML error: Encountered invalid utf-8"));
}

TEST(TomlValue, TakesCharactersBeyondAsciiInStringsAndComments)
{
    const TomlValue root = parsed("\xef\xbb\xbf"
                                  "a = \"ä \\\" é\" # ö.\n'b ü' = 'ä' # \"");
    EXPECT_EQ(root.children.at(0).string.toStdString(), "ä \" é");
    EXPECT_EQ(root.children.at(1).key.toStdString(), "b ü");
}

TEST(TomlValue, RejectsCharactersBeyondAsciiElsewhere)
{
    // The parser by itself takes them for impossible.
    for (const char *text : {"a = 1ä", "[ä]", "a = 0\"ä\"", "a = \"\"\"\\\n  ä", "a = 1\xc2\xa0ä"})
        EXPECT_THAT(errorIn(text), HasSubstr("TOML error")) << text;
    EXPECT_EQ(parsed("a = \"\"\"\\\n  ä\"\"\"").children.at(0).string.toStdString(), "ä");
}

TEST(TomlValue, ReportsTableHeadersWithoutAName)
{
    // The parser's own assertions would end the process here.
    for (const char *header : {"[[[", "[{", "[[#", "[[\n]]", "[ =", "[[\r\n"})
        EXPECT_THAT(errorIn(header), HasSubstr("TOML error")) << header;
}

TEST(TomlValue, RefusesToNestWithoutEnd)
{
    EXPECT_THAT(
        errorIn("a = " + QByteArray(100'000, '[')),
        testing::AllOf(HasSubstr("nested"), HasSubstr("f:1:"), testing::Not(HasSubstr("TOML_"))));
    EXPECT_THAT(errorIn("a = 1\n" + QByteArray("a.").repeated(100'000) + "b = 1"),
                HasSubstr("f:2:1: error: more than 100 dots in one line"));
    EXPECT_THAT(errorIn("[" + QByteArray("a.").repeated(1000) + "b]"), HasSubstr("dots"));
    for (const char *between : {"\t", " ", "\xc3\xa4", "\r"})
        EXPECT_THAT(errorIn("\n# " + QByteArray(QByteArray(".") + between).repeated(101)),
                    HasSubstr("f:2:1: error: more than 100 dots in one line"));
    EXPECT_EQ(parsed("# " + QByteArray(100, '.') + "\n# " + QByteArray(100, '.') + "\na = 1")
                  .children.size(),
              1U);
}
