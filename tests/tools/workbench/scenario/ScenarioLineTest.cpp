#include "ScenarioLine.h"

#include "ScenarioText.h"

#include <gmock/gmock.h>

namespace {

using namespace ScenarioText;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

} // namespace

TEST(ScenarioLine, ColumnsCountCharacters)
{
    EXPECT_THAT(mistake("select \"ä😀\" x"), HasSubstr(":1:13: error: unexpected 'x'"));
}

TEST(ScenarioLine, LongWordsAreShortenedInMessages)
{
    const std::string text = mistakeOf(QByteArray("x").repeated(1'000'000));
    EXPECT_LT(text.size(), 300U);
    EXPECT_THAT(text, HasSubstr("unknown step or device 'xxx"));
}

TEST(ScenarioLine, WordsThatAreLeftAreAMistake)
{
    EXPECT_EQ(mistakeOf("wait 1s 2s"),
              "dir/a.scenario:2:9: error: unexpected '2s' at the end of the step");
}

TEST(ScenarioLine, AQuoteMustBeClosed)
{
    EXPECT_EQ(mistake("select \"text"), "dir/a.scenario:1:8: error: this quote is not closed");
}

TEST(ScenarioLine, QuotesAreRemovedAndMakeOneWord)
{
    Diagnostics diagnostics;
    ScenarioLine line(QStringLiteral("  \"a \\\"b\\\\\" name=\"c # d\"e =f # comment"),
                      QStringLiteral("dir/a"), 7, &diagnostics);
    EXPECT_EQ(line.text().toStdString(), "\"a \\\"b\\\\\" name=\"c # d\"e =f");
    const ScenarioWord *word = line.take(QString());
    ASSERT_TRUE(word);
    EXPECT_EQ(word->text.toStdString(), "a \"b\\");
    EXPECT_TRUE(word->isQuoted);
    EXPECT_EQ(word->column, 3);
    word = line.take(QString());
    ASSERT_TRUE(word);
    EXPECT_EQ(word->option.toStdString(), "name");
    EXPECT_EQ(word->value.toStdString(), "c # de");
    EXPECT_EQ(word->text.toStdString(), "name=c # de");
    EXPECT_FALSE(word->isQuoted);
    EXPECT_EQ(word->valueColumn, word->column + 5);
    word = line.take(QString());
    ASSERT_TRUE(word);
    EXPECT_EQ(word->text.toStdString(), "=f") << "without a name it is no option";
    EXPECT_TRUE(word->option.isEmpty());
    EXPECT_TRUE(line.atEnd());
    EXPECT_THAT(diagnostics, IsEmpty());
}

TEST(ScenarioLine, AQuotedWordIsNoKeyword)
{
    Diagnostics diagnostics;
    ScenarioLine line(QStringLiteral("\"for\" for"), QStringLiteral("a"), 1, &diagnostics);
    EXPECT_FALSE(line.takeKeyword(QLatin1String("for")));
    line.take(QString());
    EXPECT_TRUE(line.takeKeyword(QLatin1String("for")));
}

TEST(ScenarioLine, OnlyItsFirstMistakeIsReported)
{
    Diagnostics diagnostics;
    ScenarioLine line(QStringLiteral("wait"), QStringLiteral("a"), 3, &diagnostics);
    line.take(QString());
    EXPECT_FALSE(line.take(QStringLiteral("a duration")));
    line.error(QStringLiteral("another one"));
    ASSERT_THAT(diagnostics, SizeIs(1));
    EXPECT_EQ(diagnostics.first().toString().toStdString(), "a:3:5: error: a duration is missing");
    EXPECT_FALSE(line.isOk());
}

TEST(ScenarioLine, AnOptionEndsAtItsFirstEqualsSign)
{
    Diagnostics diagnostics;
    ScenarioLine line(QStringLiteral("a=b=c =d=e \"f\"=g"), QStringLiteral("a"), 1, &diagnostics);
    std::vector<std::string> words;
    while (const ScenarioWord *word = line.atEnd() ? nullptr : line.take(QString()))
        words.push_back(
            (word->option + QLatin1Char('|') + word->value + QLatin1Char('|') + word->text)
                .toStdString());
    EXPECT_THAT(words, testing::ElementsAre("a|b=c|a=b=c", "=d|e|=d=e", "||f=g"));
}

TEST(ScenarioLine, AMistakeOfNoWordIsAtTheFirstColumn)
{
    Diagnostics diagnostics;
    ScenarioLine line(QStringLiteral("  wait"), QStringLiteral("a"), 3, &diagnostics);
    line.error(QStringLiteral("too long"));
    ASSERT_THAT(diagnostics, SizeIs(1));
    EXPECT_EQ(diagnostics.first().toString().toStdString(), "a:3:1: error: too long");
}

TEST(ScenarioLine, ListsUpToSixNames)
{
    const auto unknown = [](const QStringList &known) {
        Diagnostics diagnostics;
        ScenarioLine line(QString(), QStringLiteral("a"), 1, &diagnostics);
        line.unknown(4, QStringLiteral("word"), QStringLiteral("zzzz"), known);
        return diagnostics.first().toString().toStdString();
    };
    EXPECT_EQ(unknown({"a", "b", "c", "d", "e", "f"}),
              "a:1:4: error: unknown word 'zzzz'; write one of a, b, c, d, e, f");
    EXPECT_EQ(unknown({"a", "b", "c", "d", "e", "f", "g"}), "a:1:4: error: unknown word 'zzzz'");
}

TEST(ScenarioLine, TakesADurationUpToItsLimit)
{
    const auto duration = [](const char *text) {
        Diagnostics diagnostics;
        ScenarioLine line(QString::fromLatin1(text), QStringLiteral("a"), 1, &diagnostics);
        const std::optional<qint64> taken = line.takeDuration();
        EXPECT_EQ(line.isOk(), taken.has_value());
        return taken;
    };
    EXPECT_EQ(duration("604800000ms"), 604'800'000);
    EXPECT_EQ(duration("604800001ms"), std::nullopt);
    EXPECT_EQ(duration("x"), std::nullopt);
    EXPECT_EQ(duration(""), std::nullopt);
}
