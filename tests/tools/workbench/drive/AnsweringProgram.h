#ifndef ANSWERINGPROGRAM_H
#define ANSWERINGPROGRAM_H

#include "Operation.h"
#include "ProgramRun.h"

#include <QList>

/// Programs that answer what a driver asks, as the agent in a product does.
namespace AnsweringProgram {

using namespace Vorn;
using namespace Vorn::Workbench;

/// For what comes at once, also on a machine that has a lot to do.
constexpr int patienceMs = 60'000;

inline ProgramRun::Start script(const QString &text, const QList<QByteArray> &arguments = {})
{
    ProgramRun::Start start;
    start.command = QStringList{"bash", "-c", text, "product"};
    for (const QByteArray &argument : arguments)
        start.command += QString::fromUtf8(argument);
    start.passesOutput = false;
    start.quitMs = patienceMs;
    start.terminateMs = patienceMs;
    return start;
}

/// Prints each line that it is sent, and sends one of the answers for it. After the last one it
/// goes on with @p end, or prints what it is sent until it is to quit.
inline ProgramRun::Start answering(const QList<QByteArray> &answers,
                                   const QString &end = "cat <&$VORN_DRIVE_SOCKET")
{
    return script("for answer; do\n"
                  "  IFS= read -r line <&$VORN_DRIVE_SOCKET || exit 9\n"
                  "  echo \"$line\"\n"
                  "  printf %s \"$answer\" >&$VORN_DRIVE_SOCKET\n"
                  "done\n"
                      + end,
                  answers);
}

/// An answer that says only when it is given, in ms.
inline QByteArray doneAt(qint64 time)
{
    Drive::Answer answer;
    answer.time = time * 1000;
    return toLine(answer);
}

} // namespace AnsweringProgram

#endif
