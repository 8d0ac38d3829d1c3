#include "ProgramOutput.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using testing::EndsWith;
using testing::StartsWith;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

namespace {

/// What is shown of some pieces of output.
std::string shown(const QList<QByteArray> &pieces)
{
    ProgramOutput output("player", ProgramOutput::Shown::Yes);
    CaptureStderr();
    for (const QByteArray &piece : pieces)
        output.add(piece);
    output.finish();
    return GetCapturedStderr();
}

} // namespace

TEST(ProgramOutput, ShowsWholeLinesWithTheProgramsName)
{
    ProgramOutput output("player", ProgramOutput::Shown::Yes);
    CaptureStderr();
    output.add("rea");
    EXPECT_EQ(GetCapturedStderr(), "");
    CaptureStderr();
    output.add("dy\nplay");
    EXPECT_EQ(GetCapturedStderr(), "player| ready\n");
    CaptureStderr();
    output.finish();
    output.finish();
    EXPECT_EQ(GetCapturedStderr(), "player| play\n");
}

TEST(ProgramOutput, MakesControlCharactersHarmless)
{
    EXPECT_EQ(shown({QByteArray("\x1b[2Ja\0b\r\n\n", 10)}),
              "player| \\u001b[2Ja\\u0000b\nplayer| \n");
    // Binary: each byte that is no UTF-8 is shown as one that is not known.
    setlocale(LC_ALL, "C");
    EXPECT_EQ(shown({"\xff\xfe\n"}), "player| \\ufffd\\ufffd\n");
}

TEST(ProgramOutput, ShowsALongLineInPieces)
{
    const std::string piece(ProgramOutput::longestLine, 'x');
    EXPECT_EQ(shown({QByteArray(2 * ProgramOutput::longestLine + 1, 'x')}),
              "player| " + piece + "\nplayer| " + piece + "\nplayer| x\n");
    EXPECT_EQ(shown({QByteArray(2 * ProgramOutput::longestLine, 'x') + "\ny\n"}),
              "player| " + piece + "\nplayer| " + piece + "\nplayer| y\n");
}

TEST(ProgramOutput, BreaksALongLineBetweenCharacters)
{
    setlocale(LC_ALL, "C");
    // The last byte that fits is the first of a character.
    const std::string lines =
        shown({QByteArray(ProgramOutput::longestLine - 1, 'x') + "\xc3\xa4 and more"});
    EXPECT_THAT(lines, EndsWith("player| \\u00e4 and more\n"));
    EXPECT_THAT(lines, StartsWith("player| xxx"));
}

TEST(ProgramOutput, IsNotShownWhereNobodyWantsIt)
{
    ProgramOutput output("player", ProgramOutput::Shown::No);
    CaptureStderr();
    output.add("ready\n");
    output.finish();
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(output.kept(), "ready\n");
}

TEST(ProgramOutput, KeepsTheEnd)
{
    ProgramOutput output("player", ProgramOutput::Shown::No);
    const QByteArray line = QByteArray(99, 'x') + '\n';
    for (int i = 0; i < 5000; ++i)
        output.add(line);
    output.add("the\ten\x07"
               "d\n");
    EXPECT_EQ(output.kept().size(), ProgramOutput::keptSize);
    EXPECT_TRUE(output.kept().endsWith("xxx\nthe\ten\x07"
                                       "d\n"));
    const QStringList lines = output.lines();
    EXPECT_EQ(lines.last().toStdString(), "the\\ten\\u0007d");
    // The first one was cut.
    EXPECT_EQ(lines.first().size(), 99);
    EXPECT_EQ(lines.size(), 1 + ProgramOutput::keptSize / 100);
}

TEST(ProgramOutput, HasNoLinesWhereNothingWasPrinted)
{
    ProgramOutput output("player", ProgramOutput::Shown::No);
    EXPECT_EQ(output.lines(), QStringList());
    output.add("\n");
    EXPECT_EQ(output.lines(), QStringList({""}));
    output.add("a\n\nb");
    EXPECT_EQ(output.lines(), QStringList({"", "a", "", "b"}));
}

TEST(ProgramOutput, KeepsItsLimitToTheByte)
{
    ProgramOutput output("player", ProgramOutput::Shown::No);
    output.add("ab\n" + QByteArray(ProgramOutput::keptSize - 4, 'x') + '\n');
    EXPECT_EQ(output.kept().size(), ProgramOutput::keptSize);
    EXPECT_EQ(output.lines().size(), 2) << "nothing was cut";
    output.add("y");
    EXPECT_EQ(output.kept().size(), ProgramOutput::keptSize);
    EXPECT_EQ(output.lines().size(), 2) << "the first line was cut";
    EXPECT_EQ(output.lines().last(), "y");
}
