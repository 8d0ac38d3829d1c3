#include "Output.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <memory>
#include <string>

using namespace Vorn;
using namespace Vorn::Workbench;

namespace {

struct Close
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

} // namespace

TEST(Output, IsInTheCharactersOfTheLocaleAndEndsLines)
{
    const std::string saved = std::setlocale(LC_CTYPE, nullptr);
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    testing::internal::CaptureStdout();
    printLine(stdout, QStringLiteral("K\u00e4se"));
    print(stdout, "as it is");
    EXPECT_TRUE(flush(stdout));
    std::setlocale(LC_CTYPE, "C");
    printLine(stdout, QStringLiteral("K\u00e4se"));
    EXPECT_TRUE(flush(stdout));
    std::setlocale(LC_CTYPE, saved.c_str());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "K\xc3\xa4se\nas it isK\\u00e4se\n");
}

TEST(Output, ControlsNoTerminalButInColour)
{
    testing::internal::CaptureStdout();
    printLine(stdout, QStringLiteral("a\x1b[2J\u202e"));
    printColoured(stdout, QStringLiteral("\x1b[1mbold\x1b[0m"));
    EXPECT_TRUE(flush(stdout));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "a\\u001b[2J\\u202e\n\x1b[1mbold\x1b[0m\n");
}

TEST(Output, ListsDiagnosticsOnStandardError)
{
    testing::internal::CaptureStderr();
    printDiagnostics({{Diagnostic::Severity::Error, "a.toml", 1, 2, "broken"},
                      {Diagnostic::Severity::Warning, "a.toml", 3, 0, "odd"}});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "a.toml:1:2: error: broken\na.toml:3: warning: odd\n");
}

TEST(Output, RemembersThatTheDiskWasFull)
{
    const File full(std::fopen("/dev/full", "w"));
    ASSERT_TRUE(full);
    printLine(full.get(), QStringLiteral("lost"));
    EXPECT_FALSE(flush(full.get()));
    // Nothing is left to be written now, and still a line is missing.
    EXPECT_FALSE(flush(full.get()));
}

TEST(OutputDeathTest, SaysWhyItWasLost)
{
    EXPECT_EXIT(
        {
            dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
            print(stdout, "lost");
            const bool isLate = !isOutputLost();
            const bool isLost = !flush(stdout) && isOutputLost();
            printLine(stderr, outputError());
            std::_Exit(isLate && isLost ? 3 : 0);
        },
        testing::ExitedWithCode(3),
        "^cannot write to the standard output: No space left on device\n$");
}
