#include "Findings.h"

#include <gmock/gmock.h>

using namespace Vorn;

TEST(Findings, AreInTheOrderOfTheFile)
{
    Findings findings;
    findings.error({2, 1}, QStringLiteral("third"));
    findings.warning({1, 9}, QStringLiteral("second"));
    findings.warning({1, 2}, QStringLiteral("first"));
    findings.error({2, 1}, QStringLiteral("fourth"));
    std::string text;
    for (const Diagnostic &diagnostic : findings.toDiagnostics(QStringLiteral("f")))
        text += diagnostic.toString().toStdString() + "\n";
    EXPECT_EQ(text,
              "f:1:2: warning: first\n"
              "f:1:9: warning: second\n"
              "f:2:1: error: third\n"
              "f:2:1: error: fourth\n");
    EXPECT_TRUE(findings.hasErrors());
}

TEST(Findings, WithWarningsOnlyHaveNoErrors)
{
    Findings findings;
    findings.warning({1, 1}, QStringLiteral("w"));
    EXPECT_FALSE(findings.hasErrors());
}
