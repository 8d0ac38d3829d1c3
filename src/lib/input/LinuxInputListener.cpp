#include "LinuxInputListener.h"

#include "dbglog.h"
#include "vorn.h"

#include <QSocketNotifier>

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace {

log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("LinuxInputListener"));

constexpr std::size_t readSize = 1024;
constexpr int nameSize = 256;
constexpr int eventTypeBytes = 31;
constexpr int eventTypeBits = 31;
// The kernel is asked for this many bytes regardless of the bitmap's size, so only codes 0 to 31
// are ever refreshed. Products depend on getInputStatus() not reporting keys above 31.
constexpr int requestedStatusBytes = 4;
constexpr int scannedKeyCodes = 767;
constexpr int scannedSwitchCodes = 16;

// The requests as the product's kernel knows them; a size is part of its request's number.
static_assert(EVIOCGBIT(0, eventTypeBytes) == 0x801F4520);
static_assert(EVIOCGID == 0x80084502);
static_assert(EVIOCGNAME(nameSize) == 0x81004506);
static_assert(EVIOCSREP == 0x40084503);
static_assert(EVIOCGKEY(requestedStatusBytes) == 0x80044518);
static_assert(EVIOCGSW(requestedStatusBytes) == 0x8004451B);
// On 32-bit systems, whatever the size of their time_t.
static_assert(sizeof(long) != 4 || sizeof(input_event) == 16);
static_assert(sizeof(long) != 4 || readSize / sizeof(input_event) == 64);

// The previous batch, kept for reuse: QList allocates every record separately, and each read would
// otherwise free and allocate them all again.
thread_local QList<input_event> spareBatch;

/// Refills the @p spare batch, or creates a new one if a receiver kept a copy of the last batch or
/// is still processing it in a nested event loop.
QList<input_event> takeBatch(QList<input_event> &spare, const input_event *records, int count)
{
    QList<input_event> batch;
    batch.swap(spare);
    if (!batch.isDetached()) {
        batch.clear();
        batch.reserve(count);
    }
    while (batch.size() > count)
        batch.removeLast();
    const auto reused = batch.size();
    std::copy(records, records + reused, batch.begin());
    for (auto i = reused; i < count; ++i)
        batch.append(records[i]);
    return batch;
}

InputEvent::Bus busOf(unsigned int linuxBus)
{
    switch (linuxBus) {
    case BUS_PCI:
        return InputEvent::Bus::PCI;
    case BUS_USB:
        return InputEvent::Bus::USB;
    case BUS_BLUETOOTH:
        return InputEvent::Bus::Bluetooth;
    case BUS_ADB:
        return InputEvent::Bus::ADB;
    case BUS_I2C:
        return InputEvent::Bus::I2C;
    case BUS_HOST:
        return InputEvent::Bus::LocalUI;
    case BUS_SPI:
        return InputEvent::Bus::SPI;
    case BUS_CEC:
        return InputEvent::Bus::CEC;
    default:
        return InputEvent::Bus::NoBus;
    }
}

} // namespace

InputHandler::InputHandler() = default;

InputHandler::~InputHandler()
{
    if (m_listener)
        m_listener->deleteLater();
}

LinuxInputListener *InputHandler::listener() const
{
    return m_listener;
}

void InputHandler::setListener(LinuxInputListener *listener)
{
    if (m_listener) {
        LOG4CPLUS_DEBUG(logger, "Linux Input Listerner already set, ignore");
        return;
    }
    m_listener = listener;
}

void InputHandler::setHandler(InputHandler *handler)
{
    if (!m_listener) {
        LOG4CPLUS_WARN(logger, "Linux Input Listerner does not exists");
        return;
    }
    m_listener->setHandler(handler);
}

LinuxInputListener::LinuxInputListener(InputHandler *handler, const QString &device,
                                       LinuxInputListener::Type type)
    : m_handler(handler)
    , m_type(type)
    , m_device(device)
{
    m_fd = ::open(device.toUtf8().constData(), O_RDONLY);
    // Not with O_CLOEXEC: stand-ins for the C library, in products' tests, know no other flags.
    ::fcntl(m_fd, F_SETFD, FD_CLOEXEC);
    if (m_fd < 0) {
        LOG4CPLUS_ERROR(logger, "Cannot open input device " << m_device);
    } else if (testCapability(m_fd, m_type == Key ? EV_KEY : EV_SW)) {
        m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Read, this);
        Vorn::connect(m_notifier, &QSocketNotifier::activated, this, &LinuxInputListener::readData);
        // At least as large as what the kernel is asked for, and zeroed until it answers.
        m_status = std::make_unique<unsigned char[]>(
            static_cast<std::size_t>(std::max(statusSize(), requestedStatusBytes)));
        LOG4CPLUS_INFO(logger, "Event device " << m_device << " ready");
    } else {
        // A remote control without switches is normal; a key device without keys is not.
        if (m_type == Key)
            LOG4CPLUS_WARN(logger, "Event device " << m_device << " does not support EV_KEY");
        else
            LOG4CPLUS_DEBUG(logger, "Event device " << m_device << " does not support EV_SW");
        close();
    }

    // If the listener is already inert, these calls fail and leave the bus unknown.
    input_id identity = {};
    if (::ioctl(m_fd, EVIOCGID, &identity) >= 0) {
        LOG4CPLUS_DEBUG(logger, "bustype: " << identity.bustype);
        m_bus = busOf(identity.bustype);
    }
    char name[nameSize] = {};
    if (::ioctl(m_fd, EVIOCGNAME(nameSize), name) >= 0) {
        // A name that fills the buffer comes without a terminator.
        name[nameSize - 1] = '\0';
        LOG4CPLUS_DEBUG(logger, "name: " << name);
        if (std::strcmp(name, "hostlink") == 0)
            m_bus = InputEvent::Bus::Hostlink;
    }
    unsigned int repeat[2] = {0, 0};
    ::ioctl(m_fd, EVIOCSREP, repeat);
}

LinuxInputListener::~LinuxInputListener()
{
    close();
}

InputEvent::Bus LinuxInputListener::bus() const
{
    return m_bus;
}

const QString &LinuxInputListener::device() const
{
    return m_device;
}

void LinuxInputListener::setHandler(InputHandler *handler)
{
    const QPointer<LinuxInputListener> self(this);
    if (m_handler)
        m_handler->invalidate();
    if (self)
        m_handler = handler;
}

void LinuxInputListener::close()
{
    if (m_fd != -1) {
        ::close(m_fd);
        m_fd = -1;
    }
    delete m_notifier;
    m_notifier = nullptr;
}

bool LinuxInputListener::testBit(int bit, const unsigned char *bitmap)
{
    return ((bitmap[bit / 8] >> (bit % 8)) & 1) != 0;
}

bool LinuxInputListener::testCapability(int fd, int eventType)
{
    unsigned char bitmap[eventTypeBytes] = {};
    const int result = ::ioctl(fd, EVIOCGBIT(0, eventTypeBytes), bitmap);
    if (result < 0) {
        LOG4CPLUS_DEBUG(logger, "ioctl error: " << result);
        return false;
    }
    for (int bit = 0; bit < eventTypeBits; ++bit) {
        if (bit == eventType && testBit(bit, bitmap))
            return true;
    }
    return false;
}

void LinuxInputListener::getInputStatus()
{
    if (!testCapability(m_fd, m_type == Key ? EV_KEY : EV_SW))
        return;

    // Errors are ignored on purpose: the codes are then delivered in their last known state.
    if (m_type == Key)
        ::ioctl(m_fd, EVIOCGKEY(requestedStatusBytes), m_status.get());
    else
        ::ioctl(m_fd, EVIOCGSW(requestedStatusBytes), m_status.get());

    const QPointer<LinuxInputListener> self(this);
    const int codes = m_type == Key ? scannedKeyCodes : scannedSwitchCodes;
    // The receiver may delete this listener.
    for (int code = 0; self && code < codes; ++code) {
        const bool set = testBit(code, m_status.get());
        if (!set && m_type != Switch)
            continue;
        input_event record = {};
        record.type = m_type == Key ? EV_KEY : EV_SW;
        record.code = static_cast<decltype(record.code)>(code);
        record.value = set ? 1 : 0;
        if (m_handler)
            m_handler->processEvent(QList<input_event>{record});
    }
}

void LinuxInputListener::readData(int socket)
{
    // Checked once for the whole function: if it is off, nothing here could turn it on.
    const bool isLogging = logger.isEnabledFor(log4cplus::DEBUG_LOG_LEVEL);
    if (isLogging) {
        LOG4CPLUS_TRACE(logger,
                        "Enter " << dbglog_scopedFunction("void LinuxInputListener::readData(int)",
                                                          "LinuxInputListener")
                                 << ": " << socket);
    }

    input_event records[readSize / sizeof(input_event) + 1];
    const ssize_t bytes = ::read(socket, records, readSize);
    if (bytes < 0) {
        LOG4CPLUS_ERROR(logger, "Error reading from event device " << m_device);
        // Deletes the notifier whose signal we are in; do not touch it from here on.
        close();
        return;
    }
    if (static_cast<std::size_t>(bytes) < sizeof(input_event)) {
        LOG4CPLUS_ERROR(logger, "Short read on event device " << m_device);
        return;
    }

    const int count = static_cast<int>(static_cast<std::size_t>(bytes) / sizeof(input_event));
    for (int i = 0; isLogging && i < count; ++i) {
        LOG4CPLUS_DEBUG(logger,
                        " type: " << records[i].type << " code:" << records[i].code
                                  << " value:" << records[i].value);
    }
    if (!m_handler)
        return;
    QList<input_event> &spare = spareBatch;
    QList<input_event> batch = takeBatch(spare, records, count);
    m_handler->processEvent(batch);
    // The receiver may have deleted this listener.
    spare.swap(batch);
}

int LinuxInputListener::statusSize() const
{
    switch (m_type) {
    case Key:
        return 96;
    case Switch:
        return 3;
    }
    return 1;
}
