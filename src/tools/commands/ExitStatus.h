#ifndef VORN_TOOLS_EXITSTATUS_H
#define VORN_TOOLS_EXITSTATUS_H

namespace Vorn::Tools {

/// Exit statuses of all sub-commands, in order of severity.
enum ExitStatus : int {
    Success = 0,
    /// The work was done and found something wrong: an error in a profile, a failed expectation.
    Found = 1,
    /// The work could not be done: wrong options, a file that cannot be read or written.
    Failure = 2,
};

} // namespace Vorn::Tools

#endif
