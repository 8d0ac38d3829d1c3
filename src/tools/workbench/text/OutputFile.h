#ifndef VORN_WORKBENCH_OUTPUTFILE_H
#define VORN_WORKBENCH_OUTPUTFILE_H

#include <QByteArray>
#include <QString>

namespace Vorn::Workbench {

/// Which files an output may replace. None that was read, whatever its name here and there; of the
/// others those that are empty or bear the signature, and all if it is forced.
struct Overwrite
{
    /// What each file of this kind that the program writes has within its first 4 KiB.
    QByteArray signature;
    bool isForced = false;
};

/// Why an output must not or cannot go to @p path, with what to do about it; empty if it can. To be
/// asked when everything has been read, and before the work. Leaves nothing behind, and cannot tell
/// whether the disk will be full.
QString obstacleTo(const QString &path, const Overwrite &overwrite);

/// Whether anything at all can be written to @p path, as far as that shows beforehand.
/// @return why not; empty if it can
QString obstacleTo(const QString &path);

/// Writes a file completely or not at all, unless something stands in its way.
/// @return why it could not be written; empty if it was
QString writeFile(const QString &path, const QByteArray &content, const Overwrite &overwrite);

} // namespace Vorn::Workbench

#endif
