#include "SubsystemState.h"

#include "Interposition.h"
#include "RealCalls.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Vorn::Sim {

namespace {

constexpr char deviceFolder[] = "/dev";
constexpr char inputFolder[] = "/dev/input";
constexpr char nodePrefix[] = "/dev/input/event";
constexpr std::size_t prefixLength = sizeof(nodePrefix) - 1;
constexpr mode_t anyRead = S_IRUSR | S_IRGRP | S_IROTH;
constexpr mode_t anyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t anyAccess = anyRead | anyWrite | S_IXUSR | S_IXGRP | S_IXOTH;
constexpr unsigned int firstMinor = 64;
constexpr std::size_t bitsPerLong = 8 * sizeof(long);

std::atomic<bool> isAlive{false};

// The number N of /dev/input/eventN; -1 for any other path.
int nodeNumber(const char *path)
{
    if (std::strncmp(path, nodePrefix, prefixLength) != 0)
        return -1;
    const char *digits = path + prefixLength;
    if (digits[0] == '\0' || (digits[0] == '0' && digits[1] != '\0'))
        return -1;
    int number = 0;
    for (; *digits != '\0'; ++digits) {
        if (*digits < '0' || *digits > '9' || number > 99'999)
            return -1;
        number = number * 10 + (*digits - '0');
    }
    return number;
}

bool isBelowInputFolder(const char *path)
{
    const std::size_t length = sizeof(inputFolder) - 1;
    return std::strncmp(path, inputFolder, length) == 0 && path[length] == '/'
        && path[length + 1] != '\0';
}

// Ends a served call: 0 and above are results, below are negative error numbers.
template <typename Result>
Result finish(long result)
{
    if (result >= 0)
        return static_cast<Result>(result);
    errno = static_cast<int>(-result);
    return -1;
}

int copyText(const QByteArray &text, std::size_t size, void *target)
{
    const std::size_t length = std::min(std::strlen(text.constData()) + 1, size);
    std::memcpy(target, text.constData(), length);
    return static_cast<int>(length);
}

// Bitmaps are handed out in whole longs, of which as much as fits.
template <std::size_t bits>
int copyBits(const std::bitset<bits> &set, std::size_t size, void *target)
{
    // The highest code, KEY_MAX and so on, is not counted by the kernel either.
    constexpr std::size_t longs = (bits - 1 + bitsPerLong - 1) / bitsPerLong;
    unsigned long words[longs] = {};
    for (std::size_t bit = 0; bit < std::min(bits, longs * bitsPerLong); ++bit) {
        if (set.test(bit))
            words[bit / bitsPerLong] |= 1UL << (bit % bitsPerLong);
    }
    const std::size_t length = std::min(size, sizeof(words));
    std::memcpy(target, words, length);
    return static_cast<int>(length);
}

template <typename Value>
int copyValue(const Value &value, void *target)
{
    std::memcpy(target, &value, sizeof(value));
    return 0;
}

} // namespace

unsigned long withoutSize(unsigned long request)
{
    return request & ~(static_cast<unsigned long>(_IOC_SIZEMASK) << _IOC_SIZESHIFT);
}

int ScriptedFailure::next()
{
    if (times == 0)
        return 0;
    if (after > 0) {
        --after;
        return 0;
    }
    if (times > 0)
        --times;
    return error;
}

NodeState::NodeState(std::mutex &subsystemLock, int nodeNumber)
    : lock(subsystemLock)
    , number(nodeNumber)
    , path(nodePrefix + QByteArray::number(nodeNumber))
{ }

bool NodeState::isReadable(const Client &client) const
{
    return !client.queue.isEmpty() || readError != 0 || !client.device->isPresent;
}

SubsystemState::SubsystemState(InputSubsystem::Directory directory)
    : m_directory(directory)
    , m_temporary(QDir::tempPath() + QStringLiteral("/vorn-sim-XXXXXX"))
{
    if (isAlive.exchange(true))
        qFatal("InputSubsystem: only one may be alive at a time");
    if (!m_temporary.isValid())
        qFatal("InputSubsystem: no temporary folder: %s", qPrintable(m_temporary.errorString()));
    m_folder = QFile::encodeName(m_temporary.path());
    if (::mkdir(m_folder + deviceFolder, 0755) != 0)
        qFatal("InputSubsystem: cannot make a folder for /dev: %s", std::strerror(errno));
    makeDirectory();
    serveFiles(this);
    checkInterposition();
    m_calls.clear();
    m_counts = {};
    if (m_directory == InputSubsystem::Directory::ComesAndGoes)
        removeDirectory();
}

SubsystemState::~SubsystemState()
{
    for (const auto &[number, entry] : m_nodes) {
        if (!entry.state->clients.empty())
            qWarning("InputSubsystem: %zu descriptor(s) of /dev/input/event%d left open",
                     entry.state->clients.size(), number);
    }
    serveFiles(nullptr);
    isAlive = false;
}

InputNode &SubsystemState::node(int number)
{
    const Lock lock(m_lock);
    return *entry(number).handle;
}

void SubsystemState::plug(int number, const DeviceDescription &description)
{
    const Lock lock(m_lock);
    NodeState &node = *entry(number).state;
    if (node.device)
        qFatal("InputSubsystem: a device is already plugged in at %s", node.path.constData());
    node.device = makeDevice(description);
    node.mode = description.mode & anyAccess;
    if (m_directoryExists)
        makeNode(node);
    else if (m_directory == InputSubsystem::Directory::ComesAndGoes)
        makeDirectory();
}

void SubsystemState::unplug(int number, InputSubsystem::Unread unread)
{
    const Lock lock(m_lock);
    NodeState &node = pluggedNode(number);
    node.device->disconnect();
    if (unread == InputSubsystem::Unread::Lost)
        node.device->dropUnread();
    node.device.reset();
    if (!m_directoryExists)
        return;
    ::unlink(realPath(node.path));
    const auto isPlugged = [](const auto &entry) { return entry.second.state->device != nullptr; };
    if (m_directory == InputSubsystem::Directory::ComesAndGoes
        && std::none_of(m_nodes.begin(), m_nodes.end(), isPlugged))
        removeRealDirectory();
}

void SubsystemState::replace(int number, const DeviceDescription &description)
{
    const Lock lock(m_lock);
    NodeState &node = pluggedNode(number);
    node.device->disconnect();
    node.device = makeDevice(description);
}

void SubsystemState::setPermissions(int number, mode_t mode)
{
    const Lock lock(m_lock);
    NodeState &node = pluggedNode(number);
    node.mode = mode & anyAccess;
    if (m_directoryExists && ::chmod(realPath(node.path), node.mode) != 0)
        qFatal("InputSubsystem: cannot change the mode of a node: %s", std::strerror(errno));
}

void SubsystemState::removeDirectory()
{
    const Lock lock(m_lock);
    if (m_directoryExists)
        removeRealDirectory();
}

void SubsystemState::createDirectory()
{
    const Lock lock(m_lock);
    if (!m_directoryExists)
        makeDirectory();
}

bool SubsystemState::directoryExists() const
{
    const Lock lock(m_lock);
    return m_directoryExists;
}

QString SubsystemState::folder() const
{
    return QFile::decodeName(realPath(deviceFolder));
}

int SubsystemState::openDescriptors() const
{
    const Lock lock(m_lock);
    std::size_t count = 0;
    for (const auto &node : m_nodes)
        count += node.second.state->clients.size();
    return static_cast<int>(count);
}

void SubsystemState::setRecording(bool on)
{
    const Lock lock(m_lock);
    m_isRecording = on;
}

QVector<SystemCall> SubsystemState::systemCalls() const
{
    const Lock lock(m_lock);
    return m_calls;
}

void SubsystemState::clearSystemCalls()
{
    const Lock lock(m_lock);
    m_calls.clear();
}

CallCounts SubsystemState::callCounts() const
{
    const Lock lock(m_lock);
    return m_counts;
}

void SubsystemState::translate(const char *path, char *buffer, std::size_t size) const
{
    const auto folderLength = static_cast<std::size_t>(m_folder.size());
    const std::size_t pathLength = std::strlen(path);
    if (folderLength + pathLength >= size) {
        // A path that fails for the same reason.
        std::memset(buffer, 'x', size - 1);
        buffer[size - 1] = '\0';
        return;
    }
    std::memcpy(buffer, m_folder.constData(), folderLength);
    std::memcpy(buffer + folderLength, path, pathLength + 1);
}

bool SubsystemState::open(const char *path, int flags, mode_t mode, int &result)
{
    long outcome = 0;
    {
        const Lock lock(m_lock);
        NodeState *node = visibleNode(path);
        outcome = node ? openNode(*node, flags) : -ENOENT;
        if (!node) {
            const int fd = Real::open(realPath(path), flags, mode);
            outcome = fd < 0 ? -errno : fd;
        }
        if (isBelowInputFolder(path)) {
            ++m_counts.opens;
            if (m_isRecording) {
                SystemCall call;
                call.kind = SystemCall::Kind::Open;
                call.path = node ? node->path : QByteArray(path);
                call.openFlags = flags;
                call.fd = outcome < 0 ? -1 : static_cast<int>(outcome);
                record(call, outcome);
            }
        }
    }
    result = finish<int>(outcome);
    return true;
}

bool SubsystemState::read(int fd, void *buffer, std::size_t size, ssize_t &result)
{
    Lock lock(m_lock);
    const std::shared_ptr<Client> client = findClient(fd);
    if (!client)
        return false;
    const long outcome = readNode(lock, *client, buffer, size);
    ++m_counts.reads;
    if (m_isRecording) {
        SystemCall call;
        call.kind = SystemCall::Kind::Read;
        call.path = client->node->path;
        call.fd = fd;
        call.size = size;
        record(call, outcome);
    }
    lock.unlock();
    result = finish<ssize_t>(outcome);
    return true;
}

bool SubsystemState::ioctl(int fd, unsigned long request, void *argument, int &result)
{
    // These concern the descriptor as such and never reach a device's driver.
    if (request == FIOCLEX || request == FIONCLEX || request == FIONBIO)
        return false;

    Lock lock(m_lock);
    const std::shared_ptr<Client> client = findClient(fd);
    if (!client)
        return false;

    long outcome = 0;
    const auto failure = client->node->ioctlFailures.find(withoutSize(request));
    const int error = failure == client->node->ioctlFailures.end() ? 0 : failure->second.next();
    if (error != 0)
        outcome = -error;
    else if (!client->device->isPresent)
        outcome = -ENODEV;
    else
        outcome = answer(*client, request, argument);
    client->setReadable(client->node->isReadable(*client));

    ++m_counts.ioctls;
    if (m_isRecording) {
        SystemCall call;
        call.kind = SystemCall::Kind::Ioctl;
        call.path = client->node->path;
        call.fd = fd;
        call.request = request;
        call.size = _IOC_SIZE(request);
        record(call, outcome);
    }
    lock.unlock();
    result = finish<int>(outcome);
    return true;
}

bool SubsystemState::close(int fd, int &result)
{
    const Lock lock(m_lock);
    const std::shared_ptr<Client> client = findClient(fd);
    if (!client)
        return false;

    const auto forget = [&client](std::vector<Client *> &clients) {
        clients.erase(std::remove(clients.begin(), clients.end(), client.get()), clients.end());
    };
    forget(client->node->clients);
    forget(client->device->clients);
    if (client->device->grabber == client.get())
        client->device->grabber = nullptr;
    client->isOpen = false;
    m_clients[static_cast<std::size_t>(fd)].reset();
    result = Real::close(fd);

    ++m_counts.closes;
    if (m_isRecording) {
        SystemCall call;
        call.kind = SystemCall::Kind::Close;
        call.path = client->node->path;
        call.fd = fd;
        record(call, result);
    }
    return true;
}

bool SubsystemState::access(const char *path, int mode, int &result)
{
    const Lock lock(m_lock);
    if (const NodeState *node = visibleNode(path)) {
        // By the bits alone: the process may be root's, to whom every real file is accessible.
        const bool isDenied = ((mode & R_OK) != 0 && (node->mode & anyRead) == 0)
            || ((mode & W_OK) != 0 && (node->mode & anyWrite) == 0)
            || ((mode & X_OK) != 0 && (node->mode & anyAccess & ~anyRead & ~anyWrite) == 0);
        result = finish<int>(isDenied ? -EACCES : 0);
        return true;
    }
    result = Real::access(realPath(path), mode);
    return true;
}

bool SubsystemState::attributes(const char *path, Attributes &result)
{
    const Lock lock(m_lock);
    const NodeState *node = visibleNode(path);
    if (!node)
        return false;
    result = {node->mode, firstMinor + static_cast<unsigned int>(node->number)};
    return true;
}

bool SubsystemState::attributes(int fd, Attributes &result)
{
    const Lock lock(m_lock);
    const std::shared_ptr<Client> client = findClient(fd);
    if (!client)
        return false;
    result = {client->node->mode, firstMinor + static_cast<unsigned int>(client->node->number)};
    return true;
}

void SubsystemState::checkInterposition() const
{
    if (const char *name = missingInterposition())
        qFatal("InputSubsystem: \"%s\" of the C library is not replaced in this process; "
               "vorn::sim works in executables only, and they must export it",
               name);

    // Whether Qt arrives here is seen by what it finds at a path that only exists here.
    const QByteArray text = m_folder;
    QFile real(QFile::decodeName(realPath("/dev/input/.vorn-sim")));
    QFile simulated(QStringLiteral("/dev/input/.vorn-sim"));
    const bool isReached = real.open(QIODevice::WriteOnly) && real.write(text) == text.size()
        && real.flush() && QDir(QStringLiteral("/dev/input/")).exists(QStringLiteral(".vorn-sim"))
        && simulated.open(QIODevice::ReadOnly) && simulated.readAll() == text;
    if (!isReached)
        qFatal("InputSubsystem: Qt's file functions do not arrive at the simulation");
    real.remove();
}

SubsystemState::Entry &SubsystemState::entry(int number)
{
    if (number < 0)
        qFatal("InputSubsystem: there is no node with the number %d", number);
    Entry &entry = m_nodes[number];
    if (!entry.state) {
        entry.state = std::make_shared<NodeState>(m_lock, number);
        entry.handle.reset(new InputNode(entry.state));
    }
    return entry;
}

NodeState &SubsystemState::pluggedNode(int number)
{
    NodeState &node = *entry(number).state;
    if (!node.device)
        qFatal("InputSubsystem: no device is plugged in at %s", node.path.constData());
    return node;
}

NodeState *SubsystemState::visibleNode(const char *path)
{
    const int number = m_directoryExists ? nodeNumber(path) : -1;
    const auto found = number < 0 ? m_nodes.end() : m_nodes.find(number);
    return found != m_nodes.end() && found->second.state->device ? found->second.state.get()
                                                                 : nullptr;
}

std::shared_ptr<Client> SubsystemState::findClient(int fd) const
{
    const auto index = static_cast<std::size_t>(fd);
    return fd >= 0 && index < m_clients.size() ? m_clients[index] : nullptr;
}

std::shared_ptr<SimulatedDevice> SubsystemState::makeDevice(const DeviceDescription &description)
{
    auto device = std::make_shared<SimulatedDevice>(description);
    if (description.autoRepeat) {
        SimulatedDevice *repeated = device.get();
        device->autoRepeat = std::make_unique<AutoRepeat>([this, repeated] {
            const Lock lock(m_lock);
            return repeated->repeatKey();
        });
    }
    return device;
}

QByteArray SubsystemState::realPath(const char *path) const
{
    return m_folder + path;
}

void SubsystemState::makeNode(const NodeState &node)
{
    // In one step with its mode, so that watchers see one change. A FIFO because directory
    // listings tell files from devices, and nothing else that is neither is made without
    // privileges.
    const mode_t oldMask = ::umask(0);
    const int result = ::mkfifo(realPath(node.path), node.mode);
    const int error = errno;
    ::umask(oldMask);
    if (result != 0)
        qFatal("InputSubsystem: cannot make a node: %s", std::strerror(error));
}

void SubsystemState::makeDirectory()
{
    if (::mkdir(realPath(inputFolder), 0755) != 0)
        qFatal("InputSubsystem: cannot make a folder for /dev/input: %s", std::strerror(errno));
    m_directoryExists = true;
    for (const auto &node : m_nodes) {
        if (node.second.state->device)
            makeNode(*node.second.state);
    }
}

void SubsystemState::removeRealDirectory()
{
    for (const auto &node : m_nodes) {
        if (node.second.state->device)
            ::unlink(realPath(node.second.state->path));
    }
    m_directoryExists = false;
    if (::rmdir(realPath(inputFolder)) != 0)
        qFatal("InputSubsystem: cannot remove the folder for /dev/input: %s", std::strerror(errno));
}

long SubsystemState::openNode(NodeState &node, int flags)
{
    if (const int error = node.openFailure.next())
        return -error;
    const bool wantsWrite = (flags & O_ACCMODE) != O_RDONLY;
    const bool wantsRead = (flags & O_ACCMODE) != O_WRONLY;
    if ((wantsRead && (node.mode & anyRead) == 0) || (wantsWrite && (node.mode & anyWrite) == 0))
        return -EACCES;

    static_assert(EFD_NONBLOCK == O_NONBLOCK && EFD_CLOEXEC == O_CLOEXEC);
    const int fd = ::eventfd(0, flags & (O_NONBLOCK | O_CLOEXEC));
    if (fd < 0)
        return -errno;
    const auto client = std::make_shared<Client>();
    client->fd = fd;
    client->device = node.device;
    client->node = &node;
    const auto index = static_cast<std::size_t>(fd);
    if (index >= m_clients.size())
        m_clients.resize(index + 1);
    m_clients[index] = client;
    node.clients.push_back(client.get());
    node.device->clients.push_back(client.get());
    client->setReadable(node.isReadable(*client));
    return fd;
}

long SubsystemState::readNode(Lock &lock, Client &client, void *buffer, std::size_t size)
{
    if (size != 0 && size < sizeof(input_event))
        return -EINVAL;
    for (;;) {
        if (!client.isOpen)
            return -EBADF;
        if (!client.queue.isEmpty()) {
            const long outcome = size == 0 ? 0 : client.queue.take(buffer, size);
            client.setReadable(client.node->isReadable(client));
            return outcome;
        }
        if (client.node->readError != 0)
            return -client.node->readError;
        if (!client.device->isPresent)
            return -ENODEV;
        if ((::fcntl(client.fd, F_GETFL) & O_NONBLOCK) != 0)
            return -EAGAIN;
        if (size == 0)
            return 0;
        pollfd descriptor = {client.fd, POLLIN, 0};
        lock.unlock();
        const int result = Real::ppoll(&descriptor, 1, nullptr, nullptr);
        const int error = errno;
        lock.lock();
        if (result < 0)
            return -error;
    }
}

long SubsystemState::answer(Client &client, unsigned long request, void *argument)
{
    if (!argument && _IOC_SIZE(request) != 0 && request != EVIOCGRAB)
        return -EFAULT;

    SimulatedDevice &device = *client.device;
    switch (request) {
    case EVIOCGVERSION:
        return copyValue(EV_VERSION, argument);
    case EVIOCGID:
        return copyValue(device.id, argument);
    case EVIOCGREP:
        return device.types.test(EV_REP) ? copyValue(device.repeat, argument) : -ENOSYS;
    case EVIOCSREP: {
        if (!device.types.test(EV_REP))
            return -ENOSYS;
        int values[REP_CNT];
        std::memcpy(values, argument, sizeof(values));
        device.handle(EV_REP, REP_DELAY, values[REP_DELAY]);
        device.handle(EV_REP, REP_PERIOD, values[REP_PERIOD]);
        return 0;
    }
    case EVIOCGRAB:
        if (argument) {
            if (device.grabber)
                return -EBUSY;
            device.grabber = &client;
            return 0;
        }
        if (device.grabber != &client)
            return -EINVAL;
        device.grabber = nullptr;
        return 0;
    case EVIOCSCLOCKID: {
        int clock = 0;
        std::memcpy(&clock, argument, sizeof(clock));
        if (clock != CLOCK_REALTIME && clock != CLOCK_MONOTONIC && clock != CLOCK_BOOTTIME)
            return -EINVAL;
        if (clock != client.clock) {
            client.clock = clock;
            // What is queued bears the wrong time; the reader is told to ask for the state.
            if (!client.queue.isEmpty()) {
                client.queue.clear();
                device.appendDropped(client);
            }
        }
        return 0;
    }
    default:
        return answerSized(client, request, argument);
    }
}

long SubsystemState::answerSized(Client &client, unsigned long request, void *argument)
{
    if (_IOC_TYPE(request) != 'E' || _IOC_DIR(request) != _IOC_READ)
        return -EINVAL;

    SimulatedDevice &device = *client.device;
    const std::size_t size = _IOC_SIZE(request);
    const unsigned int number = _IOC_NR(request);
    switch (number) {
    case _IOC_NR(EVIOCGNAME(0)):
        return device.name ? copyText(*device.name, size, argument) : -ENOENT;
    case _IOC_NR(EVIOCGPHYS(0)):
    case _IOC_NR(EVIOCGUNIQ(0)):
        return -ENOENT;
    case _IOC_NR(EVIOCGPROP(0)):
        return copyBits(std::bitset<INPUT_PROP_CNT>(), size, argument);
    case _IOC_NR(EVIOCGKEY(0)):
        client.queue.removeType(EV_KEY);
        return copyBits(device.keys, size, argument);
    case _IOC_NR(EVIOCGLED(0)):
        client.queue.removeType(EV_LED);
        return copyBits(std::bitset<LED_CNT>(), size, argument);
    case _IOC_NR(EVIOCGSND(0)):
        client.queue.removeType(EV_SND);
        return copyBits(std::bitset<SND_CNT>(), size, argument);
    case _IOC_NR(EVIOCGSW(0)):
        client.queue.removeType(EV_SW);
        return copyBits(device.switches, size, argument);
    case _IOC_NR(EVIOCGBIT(0, 0)):
        return copyBits(device.types, size, argument);
    case _IOC_NR(EVIOCGBIT(EV_KEY, 0)):
        return copyBits(device.declaredKeys, size, argument);
    case _IOC_NR(EVIOCGBIT(EV_REL, 0)):
        return copyBits(std::bitset<REL_CNT>(), size, argument);
    case _IOC_NR(EVIOCGBIT(EV_ABS, 0)):
        return copyBits(std::bitset<ABS_CNT>(), size, argument);
    case _IOC_NR(EVIOCGBIT(EV_MSC, 0)):
        return copyBits(std::bitset<MSC_CNT>(), size, argument);
    case _IOC_NR(EVIOCGBIT(EV_SW, 0)):
        return copyBits(device.declaredSwitches, size, argument);
    case _IOC_NR(EVIOCGBIT(EV_LED, 0)):
        return copyBits(std::bitset<LED_CNT>(), size, argument);
    case _IOC_NR(EVIOCGBIT(EV_SND, 0)):
        return copyBits(std::bitset<SND_CNT>(), size, argument);
    case _IOC_NR(EVIOCGBIT(EV_FF, 0)):
        return copyBits(std::bitset<FF_CNT>(), size, argument);
    default:
        return -EINVAL;
    }
}

void SubsystemState::record(SystemCall call, long outcome)
{
    call.result = outcome < 0 ? -1 : outcome;
    call.error = outcome < 0 ? static_cast<int>(-outcome) : 0;
    m_calls.append(call);
}

} // namespace Vorn::Sim
