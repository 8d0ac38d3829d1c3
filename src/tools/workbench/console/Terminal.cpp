#include "Terminal.h"

#include <QByteArray>
#include <QtGlobal>

#include <unistd.h>

namespace Vorn::Workbench {

bool isTerminal(int descriptor)
{
    return isatty(descriptor) == 1;
}

bool isColoured(Colour colour, int descriptor)
{
    if (colour != Colour::Auto)
        return colour == Colour::Always;
    return isTerminal(descriptor) && qEnvironmentVariableIsEmpty("NO_COLOR")
        && understandsSequences();
}

bool understandsSequences()
{
    const QByteArray kind = qgetenv("TERM");
    return !kind.isEmpty() && kind != "dumb";
}

} // namespace Vorn::Workbench
