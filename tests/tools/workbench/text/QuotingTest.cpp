#include "Quoting.h"

#include <gmock/gmock.h>

#include <string>

using namespace Vorn::Workbench;

namespace {

std::string shown(const char *utf8)
{
    return quoted(QString::fromUtf8(utf8)).toStdString();
}

} // namespace

TEST(Quoted, KeepsAMessageOnOneLine)
{
    EXPECT_EQ(shown("a b"), "'a b'");
    EXPECT_EQ(shown("a\nb\x1B"), "'a\uFFFDb\uFFFD'");
}

TEST(Quoted, ShortensWhatIsLongerThanSixtyCharacters)
{
    EXPECT_EQ(quoted(QString(60, 'x')).size(), 62);
    EXPECT_EQ(quoted(QString(61, 'x')),
              QLatin1Char('\'') + QString(60, 'x') + QString::fromUtf8("…'"));
}

TEST(Quoted, KeepsCharactersOutsideTheBasicPlaneWhole)
{
    EXPECT_EQ(shown("\U0001F3B5"), "'\U0001F3B5'");
    // Half a pair is not a character.
    EXPECT_EQ(quoted(QString(QChar(0xD83C))).toStdString(), "'\uFFFD'");
}

TEST(Quoted, TakesBytesOfAFile)
{
    EXPECT_EQ(quoted(std::string_view("N: x")).toStdString(), "'N: x'");
    EXPECT_EQ(quoted(std::string_view("\xFF")).toStdString(), "'\uFFFD'");
    EXPECT_EQ(quoted(std::string_view("a\0b", 3)).toStdString(), "'a\uFFFDb'");
}

TEST(Quoted, DoesNotDecodeAMegabyteForOneMessage)
{
    const std::string line(1 << 20, 'x');
    EXPECT_EQ(quoted(std::string_view(line)).size(), 63);
}
