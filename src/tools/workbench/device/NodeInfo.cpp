#include "NodeInfo.h"

#include "Bitmaps.h"
#include "BusNames.h"
#include "LibraryFacts.h"
#include "RecordedDevice.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace Vorn::Workbench {

namespace {

constexpr char inputFolder[] = "/dev/input";
constexpr char nodePrefix[] = "/dev/input/event";
constexpr int textBytes = 256;
constexpr int switchBytes = (SW_CNT + 7) / 8;

/// An open node.
class Node
{
public:
    // Without waiting, since nodes of other kinds may take their time.
    explicit Node(const QString &path)
        : m_fd(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
        , m_error(m_fd < 0 ? errno : 0)
    { }

    ~Node()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }

    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;

    bool isOpen() const { return m_fd >= 0; }
    int error() const { return m_error; }

    bool isDevice() const
    {
        struct stat status = {};
        return ::fstat(m_fd, &status) != 0 || S_ISCHR(status.st_mode);
    }

    /// The answer to a request, as long as the request asks for; null if it fails.
    QByteArray ask(unsigned long request) const
    {
        QByteArray answer(static_cast<int>(_IOC_SIZE(request)), '\0');
        if (::ioctl(m_fd, request, answer.data()) < 0)
            return {};
        return answer;
    }

    /// A text, null if it was not told.
    QByteArray askText(unsigned long request) const
    {
        const QByteArray answer = ask(request);
        return answer.isNull() ? answer : kernelText(answer);
    }

private:
    const int m_fd;
    const int m_error;
};

int numberOf(const QString &path)
{
    const QLatin1String prefix(nodePrefix);
    if (!path.startsWith(prefix))
        return -1;
    bool isNumber = false;
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
        return QStringLiteral("there is no such node");
    case ENODEV:
    case ENXIO:
        return QStringLiteral("the device is gone");
    default:
        return systemError(error);
    }
}

void askForCodes(const Node &node, const QByteArray &types, RecordedDevice *device)
{
    for (int type = EV_SYN + 1; type < typeCount; ++type) {
        if (!testBit(types, type))
            continue;
        const auto size = static_cast<unsigned int>(type == EV_SW ? switchBytes : bitmapSize(type));
        // EV_REP has codes, but they cannot be asked for.
        QByteArray codes;
        if (size > 0 && type != EV_REP)
            codes = node.ask(EVIOCGBIT(static_cast<unsigned int>(type), size));
        if (!declareCodes(device, type, codes).isEmpty())
            device->codes.insert(type, {});
    }
}

QVector<int> declared(const QVector<int> &codes, const RecordedDevice &device, int type)
{
    QVector<int> result;
    std::copy_if(codes.cbegin(), codes.cend(), std::back_inserter(result),
                 [&](int code) { return device.has(type, code); });
    return result;
}

QString missingType(const NodeInfo &info, const QString &type)
{
    if (!info.hasTypes)
        return QStringLiteral("it does not tell its event types");
    return QStringLiteral("no %1").arg(type);
}

} // namespace

LibraryView NodeInfo::libraryView() const
{
    LibraryView view;
    view.bus = libraryBus(hasIdentity ? device.id.bustype : 0, name());
    if (number < 0 || number >= nodeCount)
        view.reason = QStringLiteral("the library looks at event0 to event9 only");
    else if (!isReadable())
        view.reason = error;
    else if (device.name.isNull())
        view.reason = QStringLiteral("it does not tell its name");
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
            + QStringLiteral(": keys are not read, the library warns of it");
    if (!view.readsSwitches)
        view.switchReason =
            missingType(*this, QStringLiteral("EV_SW")) + QStringLiteral(": switches are not read");
    if (!view.isUsed) {
        view.reason = hasTypes ? QStringLiteral("it has neither keys nor switches")
                               : QStringLiteral("it does not tell its event types");
    }
    return view;
}

NodeInfo readNode(const QString &path)
{
    NodeInfo info;
    info.path = path;
    info.number = numberOf(path);
    const Node node(path);
    if (!node.isOpen()) {
        info.error = openError(node.error());
        return info;
    }
    if (!node.isDevice()) {
        info.isDevice = false;
        info.error = QStringLiteral("no device, but a file");
        return info;
    }

    RecordedDevice &device = info.device;
    const QByteArray identity = node.ask(EVIOCGID);
    info.hasIdentity = !identity.isNull();
    if (info.hasIdentity)
        std::copy(identity.cbegin(), identity.cend(), reinterpret_cast<char *>(&device.id));
    device.name = node.askText(EVIOCGNAME(textBytes));
    device.phys = node.askText(EVIOCGPHYS(textBytes));
    device.uniq = node.askText(EVIOCGUNIQ(textBytes));
    device.properties = withoutTrailingZeros(node.ask(EVIOCGPROP(maxPropertyBytes)));

    const QByteArray types = node.ask(EVIOCGBIT(0, typeBytes));
    info.hasTypes = !types.isNull();
    if (!info.hasIdentity && device.name.isNull() && !info.hasTypes) {
        info.error = QStringLiteral("it does not answer as an input device does");
        return info;
    }
    askForCodes(node, types, &device);
    if (device.has(EV_KEY))
        device.keysDown = declared(setBits(node.ask(EVIOCGKEY(KEY_CNT / 8))), device, EV_KEY);
    if (device.has(EV_SW))
        device.switchesOn = declared(setBits(node.ask(EVIOCGSW(switchBytes))), device, EV_SW);
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
