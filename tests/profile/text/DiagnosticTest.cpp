#include "Diagnostic.h"

#include <gmock/gmock.h>

using namespace Vorn;

TEST(Diagnostic, NamesFileLineAndColumnAsEditorsReadThem)
{
    Diagnostic diagnostic{Diagnostic::Severity::Error, "a.toml", 12, 20, "this is wrong"};
    EXPECT_EQ(diagnostic.toString().toStdString(), "a.toml:12:20: error: this is wrong");
    diagnostic.column = 0;
    diagnostic.severity = Diagnostic::Severity::Warning;
    EXPECT_EQ(diagnostic.toString().toStdString(), "a.toml:12: warning: this is wrong");
    diagnostic.line = 0;
    EXPECT_EQ(diagnostic.toString().toStdString(), "a.toml: warning: this is wrong");
}

TEST(Diagnostic, WarningsAreNoErrors)
{
    Diagnostics diagnostics{{Diagnostic::Severity::Warning, "a", 1, 1, "w"}};
    EXPECT_FALSE(hasErrors(diagnostics));
    diagnostics += Diagnostic{Diagnostic::Severity::Error, "a", 1, 1, "e"};
    EXPECT_TRUE(hasErrors(diagnostics));
}

TEST(Diagnostic, ControlsNoTerminal)
{
    const Diagnostic diagnostic{Diagnostic::Severity::Error, "a\x1b[2J.toml", 1, 2, "b\nc\u202e"};
    EXPECT_EQ(diagnostic.toString().toStdString(), R"(a\u001b[2J.toml:1:2: error: b\nc\u202e)");
}

TEST(Diagnostic, HasNoColumnWithoutALine)
{
    const Diagnostic diagnostic{Diagnostic::Severity::Error, "a.toml", 0, 3, "wrong"};
    EXPECT_EQ(diagnostic.toString().toStdString(), "a.toml: error: wrong");
}
