// Usage: vorn_random_profile SEED FOLDER
//
// Writes a profile that nobody would, the same on every machine for the same seed, as
// randomSEED.toml and compiled, as randomSEED.cpp and randomSEED.h.

#include "BusNames.h"
#include "CommandNames.h"
#include "ProfileCompiler.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <QFile>

#include <cstdlib>
#include <random>

using namespace Vorn;

namespace {

class RandomProfile
{
public:
    explicit RandomProfile(unsigned seed)
        : m_engine(seed)
    { }

    Profile make()
    {
        Profile profile;
        profile.initial = text();
        for (int i = number(5); i > 0; --i)
            profile.select.append({command(), *state(oneOf(stateNames())), text()});
        for (int i = number(6); i >= 0; --i)
            profile.devices.append(device());
        return profile;
    }

private:
    // The distributions of the standard library differ between its makers.
    int number(int end) { return static_cast<int>(m_engine() % static_cast<unsigned>(end)); }
    QString oneOf(const QStringList &list)
    {
        return list.at(number(static_cast<int>(list.size())));
    }
    InputEvent::Command command() { return *Vorn::command(oneOf(commandNames())); }

    std::optional<InputEvent::Bus> bus()
    {
        if (number(2) == 0)
            return std::nullopt;
        return Vorn::bus(oneOf(busNames()));
    }

    /// Mostly of what ends, begins or continues something in C++ or in Qt.
    QString text()
    {
        const QString likely =
            QStringLiteral("\"\\?0aFgxu'%1/*\n\r\t\u00e4\u2028\ufeff\ufffe") + QChar::Null;
        QString result;
        for (int i = number(12); i > 0; --i) {
            if (number(8) == 0)
                result += QString::fromUtf8("\U0001F3B5");
            else
                result += number(4) == 0 ? QChar(0x20 + number(0xd7e0))
                                         : likely.at(number(static_cast<int>(likely.size())));
        }
        return result;
    }

    DeviceProfile device()
    {
        DeviceProfile device;
        if (number(3) > 0)
            device.name = text();
        device.bus = bus();
        for (int i = number(4); i > 0; --i)
            device.handlers.append(handler());
        return device;
    }

    HandlerProfile handler()
    {
        HandlerProfile handler;
        for (int i = number(3); i > 0; --i)
            handler.identifiers.append(text());
        handler.positionsAtStart = number(2) == 0;
        for (int i = number(30); i > 0; --i)
            handler.keys.append(key());
        for (int i = number(5); i > 0; --i)
            handler.chords.append({number(768), number(768), command(), bus()});
        for (int i = number(4); i > 0; --i)
            handler.switches.append({number(17), command()});
        return handler;
    }

    KeyMapping key()
    {
        KeyMapping key;
        key.code = number(768);
        key.command = command();
        key.immediate = number(2) == 0;
        if (number(2) == 0) {
            LongPress longPress;
            for (int i = number(3); i >= 0; --i)
                longPress.timeouts.append(number(0x7fffffff));
            longPress.repeat = number(2) == 0;
            key.longPress = longPress;
        }
        key.bus = bus();
        return key;
    }

    std::mt19937 m_engine;
};

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 3)
        return EXIT_FAILURE;
    const QByteArray toml =
        Workbench::writeProfile(RandomProfile(static_cast<unsigned>(std::atoi(argv[1]))).make());
    // As it is read: a byte order mark at the start of a text is no part of it.
    const Profile profile = parseProfile(toml, QString()).profile;
    const QString name = QStringLiteral("random") + QLatin1String(argv[1]);
    const QString path = QString::fromLocal8Bit(argv[2]) + QLatin1Char('/') + name;
    const Workbench::CompiledProfile compiled{name, name + QStringLiteral(".toml")};
    const bool isWritten = write(path + QStringLiteral(".toml"), toml)
        && write(path + QStringLiteral(".cpp"), Workbench::compiledSource(profile, compiled))
        && write(path + QStringLiteral(".h"), Workbench::compiledHeader(compiled));
    return isWritten ? EXIT_SUCCESS : EXIT_FAILURE;
}
