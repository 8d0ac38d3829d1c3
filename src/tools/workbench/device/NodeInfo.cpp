#include "NodeInfo.h"

#include "Bitmaps.h"
#include "BusNames.h"
#include "LibraryFacts.h"
#include "RecordedDevice.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace Vorn::Workbench {

namespace {

constexpr char inputFolder[] = "/dev/input";
constexpr char nodePrefix[] = "/dev/input/event";

/// An open node.
class Node
{
public:
    // A file of another kind is not opened: who writes to a pipe would take this for its reader.
    explicit Node(const QString &path)
    {
        const QByteArray name = QFile::encodeName(path);
        struct stat status = {};
        m_isDevice = ::stat(name.constData(), &status) != 0 || S_ISCHR(status.st_mode);
        if (!m_isDevice)
            return;
        m_fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        m_error = m_fd < 0 ? errno : 0;
        // In doubt it is one, and its answers will show.
        m_isDevice = m_fd < 0 || ::fstat(m_fd, &status) != 0 || S_ISCHR(status.st_mode);
    }

    ~Node()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }

    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;

    bool isOpen() const { return m_fd >= 0; }
    int error() const { return m_error; }

    bool isDevice() const { return m_isDevice; }

    /// The answer to a request, as long as the request asks for; null if it fails.
    QByteArray ask(unsigned long request) const
    {
        QByteArray answer(static_cast<int>(_IOC_SIZE(request)), '\0');
        if (::ioctl(m_fd, request, answer.data()) < 0)
            return {};
        return answer;
    }

    /// All that libevdev finds out about it; null if it leaves a request unanswered.
    std::unique_ptr<libevdev, decltype(&libevdev_free)> evdev() const
    {
        libevdev *evdev = nullptr;
        libevdev_new_from_fd(m_fd, &evdev);
        return {evdev, &libevdev_free};
    }

private:
    int m_fd = -1;
    int m_error = 0;
    bool m_isDevice = true;
};

int numberOf(const QString &path)
{
    const QLatin1String prefix(nodePrefix);
    if (!path.startsWith(prefix))
        return -1;
    bool isNumber = false;
    // Only as the kernel writes it: "event01" is not event1.
    const QString digits = path.mid(prefix.size());
    const int number = digits.toInt(&isNumber);
    return isNumber && number >= 0 && QString::number(number) == digits ? number : -1;
}

QString systemError(int error)
{
    QString text = qt_error_string(error);
    if (!text.isEmpty())
        text[0] = text.at(0).toLower();
    return text;
}

QString openError(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return QStringLiteral("permission denied; add yourself to the group 'input' and log in "
                              "again");
    case ENOENT:
        return QStringLiteral("no such node");
    case ENODEV:
    case ENXIO:
        return QStringLiteral("the device is gone");
    default:
        return systemError(error);
    }
}

QVector<int> codesThatAreOn(const libevdev *evdev, const RecordedDevice &device, unsigned int type)
{
    QVector<int> codes = device.codesOf(static_cast<int>(type));
    const auto isOff = [=](int code) {
        return libevdev_get_event_value(evdev, type, static_cast<unsigned int>(code)) == 0;
    };
    codes.erase(std::remove_if(codes.begin(), codes.end(), isOff), codes.end());
    return codes;
}

/// Adds what libevdev knows to a device whose types are known.
void describe(const libevdev *evdev, RecordedDevice *device)
{
    device->phys = libevdev_get_phys(evdev);
    device->uniq = libevdev_get_uniq(evdev);
    for (unsigned int property = 0; property < INPUT_PROP_CNT; ++property) {
        if (libevdev_has_property(evdev, property))
            setBit(&device->properties, static_cast<int>(property));
    }
    for (auto it = device->codes.begin(); it != device->codes.end(); ++it) {
        // The codes of EV_REP are a matter of course; the kernel has no bitmap of them.
        for (int code = 0; it.key() != EV_REP && code < codeCount(it.key()); ++code) {
            if (libevdev_has_event_code(evdev, static_cast<unsigned int>(it.key()),
                                        static_cast<unsigned int>(code)))
                setBit(&*it, code);
        }
    }
    device->keysDown = codesThatAreOn(evdev, *device, EV_KEY);
    device->switchesOn = codesThatAreOn(evdev, *device, EV_SW);
}

QString missingType(const NodeInfo &info, const QString &type)
{
    if (!info.hasTypes)
        return QStringLiteral("it does not report its event types");
    return QStringLiteral("no %1").arg(type);
}

} // namespace

LibraryView NodeInfo::libraryView() const
{
    LibraryView view;
    view.bus = libraryBus(hasIdentity ? device.id.bustype : 0, name());
    if (number < 0 || number >= nodeCount)
        view.reason = QStringLiteral("the library reads event0 to event%1 only").arg(nodeCount - 1);
    else if (!isReadable())
        view.reason = error;
    else if (device.name.isNull())
        view.reason = QStringLiteral("it does not report its name");
    if (!view.reason.isEmpty()) {
        view.keyReason = view.reason;
        view.switchReason = view.reason;
        return view;
    }

    view.readsKeys = hasTypes && device.has(EV_KEY);
    view.readsSwitches = hasTypes && device.has(EV_SW);
    view.isUsed = view.readsKeys || view.readsSwitches;
    if (!view.readsKeys)
        view.keyReason = missingType(*this, QStringLiteral("EV_KEY"))
            + QStringLiteral(": keys are not read, and the library logs a warning");
    if (!view.readsSwitches)
        view.switchReason =
            missingType(*this, QStringLiteral("EV_SW")) + QStringLiteral(": switches are not read");
    if (!view.isUsed) {
        view.reason = hasTypes ? QStringLiteral("it has neither keys nor switches")
                               : QStringLiteral("it does not report its event types");
    }
    return view;
}

NodeInfo readNode(const QString &path)
{
    NodeInfo info;
    info.path = path;
    info.number = numberOf(path);
    const Node node(path);
    if (!node.isDevice()) {
        info.isDevice = false;
        info.error = QStringLiteral("a file, not a device");
        return info;
    }
    if (!node.isOpen()) {
        info.error = openError(node.error());
        return info;
    }

    // The library's own requests. libevdev makes many more and refuses a node that fails a single
    // one, which does not keep the library from using it.
    RecordedDevice &device = info.device;
    const QByteArray identity = node.ask(EVIOCGID);
    info.hasIdentity = !identity.isNull();
    if (info.hasIdentity)
        std::copy(identity.cbegin(), identity.cend(), reinterpret_cast<char *>(&device.id));
    device.name = kernelText(node.ask(EVIOCGNAME(scanNameBytes)));
    const QByteArray types = node.ask(EVIOCGBIT(0, typeBytes));
    info.hasTypes = !types.isNull();
    if (!info.hasIdentity && device.name.isNull() && !info.hasTypes) {
        info.error = QStringLiteral("it does not respond like an input device");
        return info;
    }
    for (int type = EV_SYN + 1; type < typeCount; ++type) {
        if (testBit(types, type))
            device.codes.insert(type, {});
    }
    if (const auto evdev = node.evdev()) {
        info.hasCodes = true;
        describe(evdev.get(), &device);
    }
    return info;
}

QStringList inputNodes(QString *error)
{
    const QString folder = QLatin1String(inputFolder);
    const QDir directory(folder);
    if (error && directory.exists() && !QFileInfo(folder).isReadable())
        *error = QStringLiteral("cannot list %1: permission denied").arg(folder);
    const QStringList names =
        directory.entryList({QStringLiteral("event*")}, QDir::Files | QDir::System);
    // By number: in the order of texts event10 comes before event2.
    QVector<int> numbers;
    for (const QString &name : names) {
        const int number = numberOf(folder + QLatin1Char('/') + name);
        if (number >= 0)
            numbers += number;
    }
    std::sort(numbers.begin(), numbers.end());
    QStringList paths;
    for (const int number : qAsConst(numbers))
        paths += QLatin1String(nodePrefix) + QString::number(number);
    return paths;
}

} // namespace Vorn::Workbench
