#include "JsonText.h"

#include <QJsonDocument>

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using testing::HasSubstr;

namespace {

std::string offsetsOf(const JsonValue &value)
{
    std::string text = std::to_string(value.keyOffset());
    text += ":" + std::to_string(value.offset());
    for (const JsonValue &child : value.children())
        text += " (" + offsetsOf(child) + ")";
    return text;
}

struct Mistake
{
    const char *text;
    int offset;
    const char *message;
};

} // namespace

TEST(JsonText, KnowsWhereEveryValueAndItsNameBegin)
{
    const JsonText text(R"( { "a" : [1, "x"], "b":{"c":null} } )");
    ASSERT_TRUE(text.isValid());
    EXPECT_EQ(offsetsOf(text.root()), "1:1 (3:9 (10:10) (13:13)) (19:23 (24:28))");
}

TEST(JsonText, GivesValuesAsQtReadsThem)
{
    const JsonText text(
        "{\"s\": \"a\\u00e4\\n\\\"\", \"plain\": \"\xC3\xA4\", \"n\": -12.5e1, \"t\": true,"
        " \"f\": false, \"z\": null, \"\\u0065\": [], \"o\": {}}");
    ASSERT_TRUE(text.isValid());
    const JsonValue root = text.root();
    EXPECT_EQ(root.member("s")->string().toStdString(), "a\xC3\xA4\n\"");
    EXPECT_EQ(root.member("plain")->string().toStdString(), "\xC3\xA4");
    EXPECT_EQ(root.member("n")->number(), -125);
    EXPECT_TRUE(root.member("t")->boolean());
    EXPECT_FALSE(root.member("f")->boolean());
    EXPECT_EQ(root.member("z")->type(), JsonValue::Type::Null);
    EXPECT_TRUE(root.member("e")->isArray());
    EXPECT_TRUE(root.member("o")->isObject());
    EXPECT_FALSE(root.member("missing"));
}

TEST(JsonText, NamesTypesForMessages)
{
    const JsonText text(R"([{}, [], "", 1, true, null])");
    std::string names;
    for (const JsonValue &value : text.root().children())
        names += value.typeName().toStdString() + "; ";
    EXPECT_EQ(names, "an object; a list; a string; a number; true or false; null; ");
}

TEST(JsonText, KeepsDuplicateMembersAndPrefersTheLast)
{
    const JsonText text(R"({"a": 1, "b": 2, "a": 3})");
    EXPECT_EQ(text.root().children().size(), 3);
    EXPECT_EQ(text.root().member("a")->number(), 3);
}

TEST(JsonText, CountsLines)
{
    const JsonText text("[1,\n2,\r\n3\n]");
    const auto elements = text.root().children();
    EXPECT_EQ(text.root().line(), 1);
    EXPECT_EQ(elements.at(0).line(), 1);
    EXPECT_EQ(elements.at(1).line(), 2);
    EXPECT_EQ(elements.at(2).line(), 3);
}

TEST(JsonText, SkipsAByteOrderMark)
{
    const JsonText text("\xEF\xBB\xBF{\"a\": 1}");
    ASSERT_TRUE(text.isValid());
    EXPECT_EQ(text.root().member("a")->offset(), 9);
}

TEST(JsonText, SaysWhatIsWrongAndWhere)
{
    const Mistake mistakes[] = {
        {"", 0, "there is nothing in it"},
        {" \n ", 0, "there is nothing in it"},
        {"{\"a\":1,}", 7, "a comma stands before the closing bracket"},
        {"{\"a\":[1,]}", 8, "a comma stands before the closing bracket"},
        {"{\n// x\n}", 2, "there are no comments"},
        {"# x\n{}", 0, "there are no comments"},
        {"{'a':1}", 1, "texts stand in double quotes"},
        {"{\"a\":1\n\"b\":2}", 7, "a comma is missing before this"},
        {"{\"a\":1} x", 8, "garbage at the end"},
        {"{\"a\":tru}", 5, "illegal value"},
        {"{\"a\":\"\xFF\"}", 6, "invalid UTF8"},
        {"{\"a\":\"x", 6, "unterminated string"},
        {"3", 0, "illegal value"},
    };
    for (const Mistake &mistake : mistakes) {
        const JsonText text(mistake.text);
        EXPECT_FALSE(text.isValid()) << mistake.text;
        EXPECT_THAT(text.error().toStdString(), HasSubstr(mistake.message)) << mistake.text;
        EXPECT_EQ(text.errorOffset(), mistake.offset) << mistake.text;
    }
}

TEST(JsonText, ReadsWhateverQtReads)
{
    // A walk of its own that stopped earlier would call good files bad.
    for (const char *source :
         {"[]", "{}", "[[],{}]", "{\"a\":{}}", "[1.,-0,1e5]", "[\"\\\\\"]", "[\"\\x\"]",
          "{\"\":\"]}\"}", "[\"a\nb\"]", "[true,false,null]", "[\"\\ud800\"]"})
    {
        QJsonParseError error = {};
        QJsonDocument::fromJson(source, &error);
        ASSERT_EQ(error.error, QJsonParseError::NoError) << source;
        EXPECT_TRUE(JsonText(source).isValid()) << source;
    }
}

TEST(JsonText, SurvivesEveryPrefixAndEveryChangedByte)
{
    const QByteArray source = R"({"a": [1, "x\"\u0041", {"b": null}], "c": -1.5e3, "d": true})";
    int valid = 0;
    for (int size = 0; size < source.size(); ++size) {
        const QByteArray prefix = source.left(size);
        EXPECT_FALSE(JsonText(prefix).isValid()) << prefix.toStdString();
        for (const char byte : {'\0', '"', '\\', '{', ']', ',', '\xC3'}) {
            QByteArray changed = source;
            changed[size] = byte;
            const JsonText text(changed);
            QJsonParseError error = {};
            QJsonDocument::fromJson(changed, &error);
            EXPECT_EQ(text.isValid(), error.error == QJsonParseError::NoError)
                << changed.toStdString();
            if (text.isValid()) {
                ++valid;
                EXPECT_NE(offsetsOf(text.root()), "");
            }
        }
    }
    EXPECT_GT(valid, 0);
}

TEST(JsonText, RefusesWhatIsNestedTooDeeply)
{
    EXPECT_TRUE(JsonText(QByteArray(1000, '[') + QByteArray(1000, ']')).isValid());
    EXPECT_FALSE(JsonText(QByteArray(100000, '[') + QByteArray(100000, ']')).isValid());
    EXPECT_FALSE(JsonText(QByteArray(100000, '[')).isValid());
}

TEST(Findings, AreSortedByTheirPlace)
{
    const QByteArray text = "ab\n\xC3\xA4"
                            "cd\n\nx";
    Findings findings;
    findings.warning(9, "last");
    findings.error(1, "first");
    findings.error(5, "third");
    findings.warning(5, "fourth");
    findings.warning(3, "second");
    findings.error(1000, "behind the end");
    std::string lines;
    for (const Diagnostic &diagnostic : findings.toDiagnostics(text, "f"))
        lines += diagnostic.toString().toStdString() + "\n";
    EXPECT_EQ(lines,
              "f:1:2: error: first\n"
              "f:2:1: warning: second\n"
              "f:2:2: error: third\n"
              "f:2:2: warning: fourth\n"
              "f:4:1: warning: last\n"
              "f:4:2: error: behind the end\n");
    EXPECT_TRUE(findings.hasErrors());
}

TEST(Findings, WithWarningsOnlyHaveNoErrors)
{
    Findings findings;
    findings.warning(0, "w");
    EXPECT_FALSE(findings.hasErrors());
}
