#ifndef VORN_WORKBENCH_STANDARDSTREAMS_H
#define VORN_WORKBENCH_STANDARDSTREAMS_H

namespace Vorn::Workbench {

/// Makes errors of the standard streams, and of files that become too large, come back from the
/// calls that write. To be called before anything is opened.
///
/// A stream that is closed is opened in a way that every use of it fails, and the signals of a pipe
/// without a reader and of the limit of a file's size are ignored.
void prepareStandardStreams();

} // namespace Vorn::Workbench

#endif
