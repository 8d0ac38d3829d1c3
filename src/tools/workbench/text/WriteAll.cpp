#include "WriteAll.h"

#include <unistd.h>

#include <cerrno>

namespace Vorn::Workbench {

int writeAll(int descriptor, const QByteArray &bytes)
{
    int done = 0;
    while (done < bytes.size()) {
        const ssize_t written = write(descriptor, bytes.constData() + done,
                                      static_cast<std::size_t>(bytes.size() - done));
        if (written >= 0)
            done += static_cast<int>(written);
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

} // namespace Vorn::Workbench
