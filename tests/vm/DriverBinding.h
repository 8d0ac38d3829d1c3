#ifndef DRIVERBINDING_H
#define DRIVERBINDING_H

#include <QFile>

/// Binds a built-in device of the guest to its driver for the lifetime of this object. The guest's
/// init has unbound it.
class DriverBinding
{
public:
    /// @param driver the driver's folder below /sys/bus
    /// @param device the device's name there
    DriverBinding(const char *driver, const char *device)
        : m_driver(QStringLiteral("/sys/bus/%1/").arg(QString::fromLatin1(driver)))
        , m_device(device)
    {
        write("bind");
    }
    ~DriverBinding() { write("unbind"); }
    DriverBinding(const DriverBinding &) = delete;
    DriverBinding &operator=(const DriverBinding &) = delete;

private:
    void write(const char *file)
    {
        QFile control(m_driver + QString::fromLatin1(file));
        if (!control.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
            || control.write(m_device) < 0) {
            qFatal("cannot %s %s: %s", file, m_device.constData(),
                   qPrintable(control.errorString()));
        }
    }

    const QString m_driver;
    const QByteArray m_device;
};

#endif
