#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Vorn;
using namespace Vorn::Workbench;

// Qt's parser leaks a list or object whose member name occurs again in the same object.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" __attribute__((visibility("default"))) const char *__lsan_default_suppressions()
{
    return "leak:libQt5Core";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const ParsedProfile parsed = parseProfile(text, QStringLiteral("fuzz.toml"));
    for (const Diagnostic &diagnostic : parsed.diagnostics) {
        if (diagnostic.line < 1 || diagnostic.column < 1 || diagnostic.message.isEmpty())
            std::abort();
    }
    if (hasErrors(parsed.diagnostics))
        return 0;

    // A profile read without errors must be written without errors, and to the same bytes again.
    const QByteArray written = writeProfile(parsed.profile);
    const ParsedProfile again = parseProfile(written, QStringLiteral("written.toml"));
    if (hasErrors(again.diagnostics) || writeProfile(again.profile) != written)
        std::abort();
    return 0;
}
