#include "CompiledName.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

std::string problem(const char *name)
{
    return problemOfName(QString::fromUtf8(name)).toStdString();
}

} // namespace

TEST(CompiledName, IsThatOfTheFile)
{
    const auto name = [](const char *path) {
        return compiledName(QString::fromUtf8(path)).toStdString();
    };
    EXPECT_EQ(name("panel.toml"), "panel");
    EXPECT_EQ(name("/etc/player/front-panel.v2.toml"), "front_panel_v2");
    EXPECT_EQ(name("a panel"), "a_panel");
}

TEST(CompiledName, MayBeWhatCppTakes)
{
    for (const char *name : {"panel", "Panel2", "front_panel", "keys_", "P", "classes"})
        EXPECT_EQ(problem(name), "") << name;
}

TEST(CompiledName, IsRefusedWhereCppWouldReadSomethingElse)
{
    using testing::HasSubstr;
    for (const char *name : {"", "2panel", "front-panel", "a b", "pänel", "a;int b", "a\n", "\nb",
                             "a\"", "a::b", "a/*", "(a)", "?\?/"})
        EXPECT_THAT(problem(name), HasSubstr("is no name for a constant in C++")) << name;
    for (const char *name : {"class", "xor_eq", "operator", "int", "alignas"})
        EXPECT_THAT(problem(name), HasSubstr("is a keyword of C++")) << name;
    for (const char *name : {"_", "_panel", "__panel", "front__panel", "panel__"})
        EXPECT_THAT(problem(name), HasSubstr("is reserved in C++")) << name;
    for (const char *name : {"main", "std", "Vorn", "InputEvent", "linux"})
        EXPECT_THAT(problem(name), HasSubstr("already names something else")) << name;
}

TEST(CompiledName, IsQuotedWhereItIsRefused)
{
    EXPECT_EQ(problem("class"), "'class' is a keyword of C++");
}
