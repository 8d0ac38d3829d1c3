#include "PatternGuess.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

/// The patterns for a line whose message is "m".
std::vector<std::string> patterns(const std::string &header)
{
    std::vector<std::string> texts;
    for (const QString &pattern : patternsFor(header + "m", header.size()))
        texts.push_back(pattern.toStdString());
    return texts;
}

std::string likeliest(const std::string &header)
{
    return patterns(header).front();
}

std::string listed(const std::string &header)
{
    std::string list;
    for (const std::string &pattern : patterns(header))
        list += pattern + "\n";
    return list;
}

} // namespace

TEST(PatternGuess, HasThePatternsOfALineInTheirOrder)
{
    EXPECT_EQ(listed("DEBUG Input: "), "%-5p %c: %m%n\n%p %c: %m%n\n%5p %c: %m%n\n");
    EXPECT_EQ(listed("INFO  Input: "), "%-5p %c: %m%n\n%p %6c: %m%n\n%5p %6c: %m%n\n");
    EXPECT_EQ(listed(" INFO Input: "), "%5p %c: %m%n\n %p %c: %m%n\n %-5p %c: %m%n\n");
    EXPECT_EQ(listed("INFO Input: "), "%p %c: %m%n\n%-5p %c: %m%n\n%5p %c: %m%n\n");
    EXPECT_EQ(listed("ERROR - "), "%-5p - %m%n\n%p - %m%n\n%5p - %m%n\n");
    EXPECT_EQ(listed(""), "%m%n\n");
    EXPECT_EQ(listed("50% a: "), "%r%% %x: %m%n\n%r%% a: %m%n\n");
    EXPECT_EQ(listed("03/12/2026 10:00:00 "),
              "%D{%m/%d/%Y %H:%M:%S} %m%n\n%D{%d/%m/%Y %H:%M:%S} %m%n\n");
    EXPECT_EQ(listed("put: "), "%.3c: %m%n\n%-3.3c: %m%n\n");
}

TEST(PatternGuess, SeesHowLoggersAreFilledUp)
{
    EXPECT_EQ(listed("Input: "), "%c: %m%n\n");
    EXPECT_EQ(listed("Input : "), "%c : %m%n\n%-6c: %m%n\n") << "may just be written so";
    EXPECT_EQ(listed("Input  : "), "%-7c: %m%n\n%c  : %m%n\n");
    EXPECT_EQ(listed("Input   - "), "%-7c - %m%n\n%c   - %m%n\n");
    EXPECT_EQ(listed("Input - "), "%c - %m%n\n");
    EXPECT_EQ(listed("x   Input: "), "%x %7c: %m%n\nx %7c: %m%n\n");
    EXPECT_EQ(listed("x Input: "), "%x %c: %m%n\nx %c: %m%n\n");
    EXPECT_EQ(listed("   Input: "), "   %c: %m%n\n");
    for (const char *end : {":", "]", ")", ">", "|", ",", ";"})
        EXPECT_EQ(likeliest(std::string("Input  ") + end), std::string("%-7c") + end + "%m%n");
    EXPECT_EQ(likeliest("Input  ="), "%-6c =%m%n");
    EXPECT_EQ(likeliest("Input  "), "%-6c %m%n");
}

TEST(PatternGuess, SeesHowLevelsAreFilledUp)
{
    EXPECT_EQ(listed("[INFO ] "), "[%-5p] %m%n\n[%p ] %m%n\n[%5p ] %m%n\n");
    EXPECT_EQ(listed("[ INFO] "), "[%5p] %m%n\n[ %p] %m%n\n[ %-5p] %m%n\n");
    EXPECT_EQ(listed("[INFO] "), "[%p] %m%n\n[%-5p] %m%n\n[%5p] %m%n\n");
    for (const char *front : {"[", "(", "<", "|"})
        EXPECT_EQ(likeliest(std::string("a") + front + " INFO: "),
                  std::string("%x") + front + "%5p: %m%n")
            << front;
    EXPECT_EQ(likeliest("a= INFO: "), "%x= %p: %m%n");
    EXPECT_EQ(likeliest("a=  INFO: "), "%x= %5p: %m%n");
    EXPECT_EQ(likeliest("x INFO: "), "%x %p: %m%n");
    EXPECT_EQ(likeliest("x  INFO: "), "%x %5p: %m%n");
    EXPECT_EQ(likeliest("x INFO y: "), "%x %p %x: %m%n");
    EXPECT_EQ(likeliest("x INFO  y: "), "%x %-5p %x: %m%n");
}

TEST(PatternGuess, TakesWordsThatVaryForOne)
{
    EXPECT_EQ(listed("a b-c Input: "), "%x %c: %m%n\na b-c %c: %m%n\n");
    EXPECT_EQ(listed("a Input b: "), "%x %c %x: %m%n\na %c b: %m%n\n");
}
