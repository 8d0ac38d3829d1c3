#include "HeaderWords.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

std::string kindName(HeaderWord::Kind kind)
{
    const char *names[] = {"time", "level", "logger", "cut logger", "known", "other"};
    return names[static_cast<int>(kind)];
}

/// "level 'DEBUG', known '12' %i": each word with its kind and, where it has one, its format.
std::string words(std::string_view header)
{
    std::string text;
    for (const HeaderWord &word : headerWords(header)) {
        text += (text.empty() ? "" : ", ") + kindName(word.kind) + " '"
            + std::string(header.substr(word.begin, word.size)) + "'";
        if (!word.format.isEmpty())
            text += " " + word.format.toStdString();
        if (word.dayFirst != (word.kind == HeaderWord::Kind::Time ? word.format : QString()))
            text += " or " + word.dayFirst.toStdString();
    }
    return text;
}

} // namespace

TEST(HeaderWords, AreTheTimesLevelsAndLoggersOfALine)
{
    EXPECT_EQ(words("2026-01-02 10:00:00,123 DEBUG Input: "),
              "time '2026-01-02 10:00:00,123' %Y-%m-%d %H:%M:%S,%q, level 'DEBUG', logger 'Input'");
    EXPECT_EQ(words("[03/12/2026 10:00:00] [INFO ] [KeyProcessing] - "),
              "time '03/12/2026 10:00:00' %m/%d/%Y %H:%M:%S or %d/%m/%Y %H:%M:%S, level 'INFO', "
              "logger 'KeyProcessing'");
    EXPECT_EQ(words("INFORM Inputs _Input \xc3\xa4Input"),
              "other 'INFORM', other 'Inputs', other '_Input', other '\xc3\xa4Input'");
    EXPECT_EQ(words(""), "");
    EXPECT_EQ(words(" - | [] "), "");
}

TEST(HeaderWords, AreMadeOfLettersAndDigits)
{
    EXPECT_EQ(words("x/y@z`w[v{u:t"),
              "other 'x', other 'y', other 'z', other 'w', other 'v', other 'u', other 't'");
    EXPECT_EQ(words("-aZ09_ Az-"), "other 'aZ09_', other 'Az'");
    EXPECT_EQ(words("\xe2\x80\x93"), "other '\xe2\x80\x93'");
}

TEST(HeaderWords, LoggersMayBeCutAtTheFront)
{
    EXPECT_EQ(words("utListener: "), "cut logger 'utListener'");
    EXPECT_EQ(words("put: "), "cut logger 'put'");
    EXPECT_EQ(words("ut: "), "other 'ut'") << "too short to tell";
    EXPECT_EQ(words("xyz: "), "other 'xyz'");
}

TEST(HeaderWords, AScopeIsNoLogger)
{
    EXPECT_EQ(words("LinuxInputListener::readData "),
              "other 'LinuxInputListener', other 'readData'");
    EXPECT_EQ(words("utListener::readData "), "other 'utListener', other 'readData'");
    EXPECT_EQ(words("LinuxInputListener: "), "logger 'LinuxInputListener'");
}

TEST(HeaderWords, NumbersAreWhatTheirPlaceMakesThem)
{
    EXPECT_EQ(words("123 [456] 7 x"), "known '123' %r, known '456' %i, known '7' %t, other 'x'");
    EXPECT_EQ(words("[1234567] 8"), "known '1234567' %i, known '8' %t");
    EXPECT_EQ(words("[12345678] 9"), "known '12345678' %t, known '9' %i");
}

TEST(HeaderWords, NamesInBracketsAreThreads)
{
    EXPECT_EQ(words("[main] x"), "known 'main' %t, other 'x'");
    EXPECT_EQ(words("[main x]"), "other 'main', other 'x'");
    EXPECT_EQ(words("(main]"), "other 'main'");
    EXPECT_EQ(words("[main)"), "other 'main'");
    EXPECT_EQ(words("main]"), "other 'main'");
    EXPECT_EQ(words("[main"), "other 'main'");
}

TEST(HeaderWords, LocationsAreFilesAndTheirLines)
{
    EXPECT_EQ(words("src/lib-x/a+b.cpp:123 x"), "known 'src/lib-x/a+b.cpp:123' %l, other 'x'");
    EXPECT_EQ(words("a.cpp(12) x"), "known 'a.cpp(12)' %F(%L), other 'x'");
    EXPECT_EQ(words("a.cpp 12"), "known 'a.cpp' %F, known '12' %i");
    EXPECT_EQ(words("a.cpp: x"), "known 'a.cpp' %F, other 'x'");
    EXPECT_EQ(words("a.cpp() x"), "known 'a.cpp' %F, other 'x'");
    EXPECT_EQ(words("a.cpp(12 x"), "known 'a.cpp' %F, known '12' %i, other 'x'");
    EXPECT_EQ(words("a.cpp:1"), "known 'a.cpp:1' %l");
    EXPECT_EQ(words("(/src/a.cpp:12)"), "known 'src/a.cpp:12' %l");
    for (const std::string end : {".cpp", ".h", ".cc", ".cxx", ".hpp", ".c"})
        EXPECT_EQ(words("a" + end), "known 'a" + end + "' %F");
    EXPECT_EQ(words("a.java:12"), "other 'a', other 'java', known '12' %i");
    EXPECT_EQ(words(".c"), "other 'c'") << "a file has a name";
}

TEST(HeaderWords, ContextsAreInAngleBrackets)
{
    EXPECT_EQ(words("<front panel> x"), "known 'front panel' %x, other 'x'");
    EXPECT_EQ(words("<>x y"), "known '' %x, other 'x', other 'y'");
    EXPECT_EQ(words("<x y"), "other 'x', other 'y'");
    EXPECT_EQ(words("< Input> "), "known ' Input' %x");
    EXPECT_EQ(words("<"), "");
    EXPECT_EQ(words("a< INFO"), "other 'a', level 'INFO'");
}
