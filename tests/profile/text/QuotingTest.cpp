#include "Quoting.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>

using namespace Vorn;

namespace {

std::string shown(const char *utf8)
{
    return quoted(QString::fromUtf8(utf8)).toStdString();
}

} // namespace

TEST(Quoted, KeepsAMessageOnOneLine)
{
    EXPECT_EQ(shown("a b"), "'a b'");
    EXPECT_EQ(shown("a\nb\x1B"), R"('a\nb\u001b')");
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
    EXPECT_EQ(quoted(QString(QChar(0xD83C))).toStdString(), R"('\ud83c')");
}

TEST(Quoted, TakesBytesOfAFile)
{
    EXPECT_EQ(quoted(std::string_view("N: x")).toStdString(), "'N: x'");
    EXPECT_EQ(quoted(std::string_view("\xFF")).toStdString(), "'\uFFFD'");
    EXPECT_EQ(quoted(std::string_view("a\0b", 3)).toStdString(), R"('a\u0000b')");
}

TEST(Quoted, DoesNotDecodeAMegabyteForOneMessage)
{
    const std::string line(1 << 20, 'x');
    EXPECT_EQ(quoted(std::string_view(line)).size(), 63);
}

TEST(QuotedPath, ShowsTheEndOfALongPath)
{
    const QString folders = QStringLiteral("/folder").repeated(30);
    EXPECT_EQ(quotedPath(folders + QLatin1String("/panel.toml")),
              QLatin1Char('\'') + folders + QLatin1String("/panel.toml'"));
    EXPECT_EQ(quotedPath(QStringLiteral("a\nb")).toStdString(), R"('a\nb')");
}

TEST(QuotedPath, ShortensWhatNamesNoFile)
{
    EXPECT_EQ(quotedPath(QString(4095, QLatin1Char('x'))).size(), 4097);
    EXPECT_EQ(quotedPath(QString(4096, QLatin1Char('x'))).size(), 63);
}

TEST(Printable, EscapesWhatControlsATerminalOrTheDirectionOfALine)
{
    const std::pair<uint, const char *> cases[] = {
        {0x00, R"(\u0000)"},       {0x09, R"(\t)"},       {0x0A, R"(\n)"},
        {0x0D, R"(\r)"},           {0x1B, R"(\u001b)"},   {0x7F, R"(\u007f)"},
        {0x80, R"(\u0080)"},       {0x9B, R"(\u009b)"},   {0x9F, R"(\u009f)"},
        {0xAD, R"(\u00ad)"},       {0x61C, R"(\u061c)"},  {0x200B, R"(\u200b)"},
        {0x200D, R"(\u200d)"},     {0x200E, R"(\u200e)"}, {0x200F, R"(\u200f)"},
        {0x2028, R"(\u2028)"},     {0x2029, R"(\u2029)"}, {0x202A, R"(\u202a)"},
        {0x202E, R"(\u202e)"},     {0x2060, R"(\u2060)"}, {0x2066, R"(\u2066)"},
        {0x2069, R"(\u2069)"},     {0xFEFF, R"(\ufeff)"}, {0xFFFF, R"(\uffff)"},
        {0xE0041, R"(\U000e0041)"}};
    for (const auto &[character, escaped] : cases) {
        // fromUcs4() would take a leading byte order mark for one.
        const QString text = QString::fromStdU32String({U'a', character, U'b'});
        EXPECT_EQ(printable(text).toStdString(), std::string("a") + escaped + 'b');
    }
    EXPECT_EQ(printable(QString(QChar(0xDC00))).toStdString(), R"(\udc00)");
}

TEST(Printable, LeavesTextOfAnyLanguageAlone)
{
    for (const char *text : {"plain 100% \\ \"x\"", "Käse", "日本語", "שלום", "🎵", "a\u00A0b"})
        EXPECT_EQ(printable(QString::fromUtf8(text)).toStdString(), text);
}

TEST(Printable, ChangesNothingTheSecondTime)
{
    const QString once = printable(QStringLiteral("a\x1b[2J\u202E"));
    EXPECT_EQ(printable(once), once);
}
