#include "Diagnostic.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

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

TEST(TextPosition, CountsLinesAndCharactersFromOne)
{
    const QByteArray text = "ab\n\xC3\xA4z\n";
    const auto at = [&](int offset) {
        const TextPosition position = positionOf(text, offset);
        return std::make_pair(position.line, position.column);
    };
    EXPECT_EQ(at(0), std::make_pair(1, 1));
    EXPECT_EQ(at(2), std::make_pair(1, 3));
    EXPECT_EQ(at(3), std::make_pair(2, 1));
    // One character of two bytes.
    EXPECT_EQ(at(5), std::make_pair(2, 2));
    EXPECT_EQ(at(-7), std::make_pair(1, 1));
    EXPECT_EQ(at(99), std::make_pair(3, 1));
}

TEST(Diagnostic, ControlsNoTerminal)
{
    const Diagnostic diagnostic{Diagnostic::Severity::Error, "a\x1b[2J.toml", 1, 2, "b\nc\u202e"};
    EXPECT_EQ(diagnostic.toString().toStdString(), R"(a\u001b[2J.toml:1:2: error: b\nc\u202e)");
}
