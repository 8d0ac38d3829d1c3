#ifndef VORN_WORKBENCH_CHILDSTART_H
#define VORN_WORKBENCH_CHILDSTART_H

#include <QByteArray>
#include <QString>
#include <QVector>

#include <sys/types.h>

namespace Vorn::Workbench {

struct Child
{
    QString error; ///< why it could not be started; the rest is unset then
    pid_t pid = -1; ///< and its process group
    int socket = -1; ///< this end of the socket to it, non-blocking
    int output = -1; ///< what it prints on both streams, non-blocking
};

/// The name of the variable that has the number of the child's descriptor of the socket.
extern const char socketVariable[];

/// Starts a program with nothing to read, in a process group of its own, with the signals as after
/// logging in. The system kills it if this process ends without having ended it.
/// @param environment as in environ, without socketVariable
Child startChild(const QByteArray &path, const QVector<QByteArray> &arguments,
                 QVector<QByteArray> environment);

} // namespace Vorn::Workbench

#endif
