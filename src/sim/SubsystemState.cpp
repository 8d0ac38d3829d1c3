#include "SubsystemState.h"

#include "InputNode.h"
#include "Interposition.h"
#include "NodeState.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QtGlobal>

#include <atomic>
#include <cstddef>
#include <mutex>

namespace Vorn::Sim {

namespace {

std::atomic<bool> isAlive{false};

} // namespace

SubsystemState::SubsystemState(InputSubsystem::Directory directoryKind)
    : kind(directoryKind)
    , nodes(lock)
    , m_calls({lock, directory, nodes, clients, log, hook})
{
    if (isAlive.exchange(true))
        qFatal("InputSubsystem: only one may be alive at a time");
    serveFiles(&m_calls);
    checkInterposition();
    // Other threads may be calling already.
    const std::lock_guard<std::mutex> guard(lock);
    // The check above leaves its own calls in the log.
    log.reset();
    if (kind == InputSubsystem::Directory::ComesAndGoes)
        removeDirectory();
}

SubsystemState::~SubsystemState()
{
    std::unique_lock<std::mutex> guard(lock);
    for (const auto &[number, node] : nodes.all()) {
        if (const std::size_t count = node->openDescriptors())
            qWarning("InputSubsystem: %zu descriptor(s) of /dev/input/event%d left open", count,
                     number);
    }
    clients.end(guard);
    clients.leave();
    serveFiles(nullptr);
    guard.unlock();
    awaitFileCallers();
    isAlive = false;
}

InputNode &SubsystemState::handle(int number)
{
    const std::shared_ptr<NodeState> &node = nodes.node(number);
    std::unique_ptr<InputNode> &handle = m_handles[number];
    if (!handle)
        handle.reset(new InputNode(node));
    return *handle;
}

void SubsystemState::createDirectory()
{
    directory.create();
    for (const auto &[number, node] : nodes.all()) {
        if (node->device)
            directory.addNode(node->path, node->mode);
    }
}

void SubsystemState::removeDirectory()
{
    for (const auto &[number, node] : nodes.all()) {
        if (node->device)
            directory.removeNode(node->path);
    }
    directory.remove();
}

void SubsystemState::checkInterposition() const
{
    if (const char *name = missingInterposition())
        qFatal("InputSubsystem: \"%s\" of the C library is not replaced in this process; "
               "vorn::sim works in executables only, and they must export it",
               name);

    // Qt's calls arrive here if Qt finds what exists in this temporary folder alone.
    const QByteArray text = directory.realPath("/dev/input/.vorn-sim");
    QFile real(QFile::decodeName(text));
    QFile simulated(QStringLiteral("/dev/input/.vorn-sim"));
    const bool isReached = real.open(QIODevice::WriteOnly) && real.write(text) == text.size()
        && real.flush() && QDir(QStringLiteral("/dev/input/")).exists(QStringLiteral(".vorn-sim"))
        && simulated.open(QIODevice::ReadOnly) && simulated.readAll() == text;
    if (!isReached)
        qFatal("InputSubsystem: Qt's file functions do not call the simulation");
    real.remove();
}

} // namespace Vorn::Sim
