#ifndef VORN_WORKBENCH_DEVICEDECLARATION_H
#define VORN_WORKBENCH_DEVICEDECLARATION_H

#include <QByteArray>
#include <QString>

#include <optional>

namespace Vorn::Workbench {

class ScenarioContext;
class ScenarioLine;

/// Parses what follows `device`: declares a device and, unless it is `unplugged`, plugs it in.
void readDevice(ScenarioLine *line, ScenarioContext *context);

/// The device that takes the place of another.
struct Replacement
{
    QByteArray name;
    std::optional<int> bus; ///< the kernel's; absent: as before
};

/// Parses what follows `NAME replace`: those options of a declaration that a replacement can have.
std::optional<Replacement> readReplacement(ScenarioLine *line);

} // namespace Vorn::Workbench

#endif
