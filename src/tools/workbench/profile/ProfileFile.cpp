#include "ProfileFile.h"

#include "TextFile.h"

namespace Vorn::Workbench {

ParsedProfile openProfile(const QString &path, Pipes pipes)
{
    ParsedProfile parsed;
    const auto text = readFile(path, maxProfileSize, &parsed.diagnostics, pipes);
    return text ? parseProfile(*text, path) : parsed;
}

} // namespace Vorn::Workbench
