#include "OutputWatch.h"

#include "Output.h"
#include "vorn.h"

#include <QSocketNotifier>

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace Vorn::Workbench {

OutputWatch::OutputWatch(std::function<void()> callback)
{
    // Such a notifier asks for urgent data, which there never is, and is always told of errors.
    auto *notifier = new QSocketNotifier(STDOUT_FILENO, QSocketNotifier::Exception, this);
    Vorn::connect(notifier, &QSocketNotifier::activated, this,
                  [notifier, callback = std::move(callback)] {
                      notifier->setEnabled(false);
                      loseOutput(EPIPE);
                      callback();
                  });
}

} // namespace Vorn::Workbench
