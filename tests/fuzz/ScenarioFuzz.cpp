#include "ScenarioParser.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace Vorn;
using namespace Vorn::Workbench;

std::optional<QByteArray> readInclude(const QString &path, QString *error)
{
    if (path.endsWith(QLatin1String("panel")))
        return QByteArray("device panel name=\"front-panel\"\npanel press KEY_A\n");
    if (path.endsWith(QLatin1String("again")))
        return QByteArray("include \"panel\"\ninclude \"twice\"\n");
    if (path.endsWith(QLatin1String("twice")))
        return QByteArray("wait 1s\ninclude \"again\"\n");
    *error = QStringLiteral("no such file");
    return std::nullopt;
}

/// A step that refers to a nonexistent device would abort a simulation.
void check(const ParsedScenario &parsed)
{
    const auto devices = parsed.scenario.devices.size();
    for (const ScenarioStep &step : parsed.scenario.steps) {
        if (const auto *keys = std::get_if<Step::Keys>(&step.what)) {
            if (keys->device < 0 || keys->device >= devices || keys->codes.isEmpty())
                std::abort();
        }
        if (const auto *wait = std::get_if<Step::Wait>(&step.what)) {
            if (wait->duration < 0)
                std::abort();
        }
        if (const auto *event = std::get_if<Step::ExpectEvent>(&step.what)) {
            if (event->device >= devices
                || event->earliest.has_value() != event->latest.has_value())
                std::abort();
        }
    }
    for (const Diagnostic &diagnostic : parsed.diagnostics) {
        // A file that is no scenario at all has no line to name.
        const bool isOfFile = diagnostic.line == 0 && diagnostic.column == 0;
        const bool isOfLine = diagnostic.line > 0 && diagnostic.column > 0;
        if ((!isOfFile && !isOfLine) || diagnostic.message.isEmpty())
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<int>(size));
    check(parseScenario(text, QStringLiteral("fuzz.scenario"), readInclude));
    return 0;
}
