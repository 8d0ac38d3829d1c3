#include "InputSubsystem.h"
#include "VirtualClock.h"

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <cstdlib>

namespace {

// Only the expected fatal message makes the process succeed.
void onMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    const int written = std::fputs(qPrintable(text), stderr);
    const bool isExpected = written >= 0 && type == QtFatalMsg
        && text.contains(QStringLiteral("of the C library is not replaced in this process"));
    std::_Exit(isExpected ? EXIT_SUCCESS : EXIT_FAILURE);
}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(onMessage);
    if (argc == 2 && QByteArray(argv[1]) == "InputSubsystem")
        Vorn::Sim::InputSubsystem();
    else if (argc == 2 && QByteArray(argv[1]) == "VirtualClock")
        Vorn::Sim::VirtualClock();
    return EXIT_FAILURE;
}
