#include "dbglog.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(ScopedFunctionText, NamesLoggerAndFunction)
{
    EXPECT_EQ(dbglog_scopedFunction("void LinuxInputListener::readData(int)", "LinuxInputListener"),
              "LinuxInputListener::readData");
    EXPECT_EQ(dbglog_scopedFunction("BasicInputHandler::BasicInputHandler()", "BasicInputHandler"),
              "BasicInputHandler::BasicInputHandler");
    EXPECT_EQ(dbglog_scopedFunction("virtual void A::b(const QString&)", "L"), "L::b");
    EXPECT_EQ(dbglog_scopedFunction("QMap<QString, QString> A::c() const", "L"), "L::c");
    EXPECT_EQ(dbglog_scopedFunction("virtual A::~A()", "L"), "L::~A");
}

TEST(ScopedFunctionText, TakesAnyText)
{
    EXPECT_EQ(dbglog_scopedFunction("", ""), "::");
    EXPECT_EQ(dbglog_scopedFunction("plain", "L"), "L::plain");
    EXPECT_EQ(dbglog_scopedFunction("ends::", "L"), "L::");
}

TEST(StringInAStream, IsWrittenAsUtf8)
{
    std::ostringstream stream;
    stream << QString::fromUtf8("/dev/input/event0 – Gerät") << "|" << QString();
    EXPECT_EQ(stream.str(), u8"/dev/input/event0 – Gerät|");
}

TEST(StringInAStream, KeepsAZeroCharacter)
{
    std::ostringstream stream;
    stream << QString::fromLatin1("a\0b", 3);
    EXPECT_EQ(stream.str(), std::string("a\0b", 3));
}

} // namespace
