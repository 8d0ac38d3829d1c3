#include "NodeState.h"

#include "Client.h"
#include "NodePath.h"

#include <sys/stat.h>
#include <unistd.h>

namespace Vorn::Sim {

namespace {

constexpr mode_t anyRead = S_IRUSR | S_IRGRP | S_IROTH;
constexpr mode_t anyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t anyExecute = S_IXUSR | S_IXGRP | S_IXOTH;
// The minor device number of event0.
constexpr unsigned int firstMinor = 64;

} // namespace

NodeState::NodeState(std::mutex &subsystemLock, int nodeNumber)
    : lock(subsystemLock)
    , number(nodeNumber)
    , path(nodePath(nodeNumber))
{ }

void NodeState::setMode(mode_t bits)
{
    mode = bits & (anyRead | anyWrite | anyExecute);
}

bool NodeState::allows(int access) const
{
    return ((access & R_OK) == 0 || (mode & anyRead) != 0)
        && ((access & W_OK) == 0 || (mode & anyWrite) != 0)
        && ((access & X_OK) == 0 || (mode & anyExecute) != 0);
}

std::size_t NodeState::openDescriptors() const
{
    std::size_t count = 0;
    for (const Client *client : clients)
        count += client->fds.size();
    return count;
}

unsigned int NodeState::minorNumber() const
{
    return firstMinor + static_cast<unsigned int>(number);
}

} // namespace Vorn::Sim
