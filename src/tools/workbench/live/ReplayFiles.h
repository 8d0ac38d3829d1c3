#ifndef VORN_WORKBENCH_REPLAYFILES_H
#define VORN_WORKBENCH_REPLAYFILES_H

#include <QByteArray>

namespace Vorn::Workbench {

/// What a recording says about itself, for people who get it without this program.

/// The content of `README`.
QByteArray replayReadme();

/// The content of `replay.sh`, which plays the recording to a program.
QByteArray replayScript();

/// What `session.expect` begins with, as comments.
QByteArray expectationsHeader();

/// Comments for `eventN.evemu`, below the description of the device.
/// @param node "event0"
QByteArray eventsHeader(const QByteArray &node);

/// What `eventN.ioctl` begins with, as comments.
QByteArray answersHeader(const QByteArray &node);

} // namespace Vorn::Workbench

#endif
