// The library, from the node to an application's slot on the bus.

#include "BasicInputHandler.h"
#include "Counters.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

#include <linux/input.h>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int firstKey = KEY_1;
// Registered instead of the pressed keys if these are to be unmapped.
constexpr int firstOtherKey = KEY_F1;
constexpr int switchCode = SW_LINEIN_INSERT;

bool registerStream(BasicKeyInputHandler &keys, const QString &stream, int keyCount)
{
    // The feeder decides what is pressed, the registrations what becomes of it.
    if (stream == QLatin1String("unmapped")) {
        for (int i = 0; i < keyCount; ++i)
            keys.registerKey(firstOtherKey + i, InputEvent::Info, true);
        return true;
    }
    if (stream == QLatin1String("chords")) {
        for (int i = 0; i < keyCount; ++i)
            keys.registerKey(firstKey + i, InputEvent::Command(InputEvent::Confirm + i), false);
        for (int i = 0; i < keyCount; i += 2)
            keys.registerDoubleKey(firstKey + i, firstKey + i + 1, InputEvent::FactoryReset);
        return true;
    }
    if (stream == QLatin1String("immediate") || stream == QLatin1String("deferred")
        || stream == QLatin1String("held"))
    {
        const bool isImmediate = stream == QLatin1String("immediate");
        const bool isHeld = stream == QLatin1String("held");
        for (int i = 0; i < keyCount; ++i) {
            keys.registerKey(firstKey + i, InputEvent::Command(InputEvent::Confirm + i),
                             isImmediate);
            if (isHeld)
                keys.enableLongPress(firstKey + i, true, {700, 100});
            else if (!isImmediate)
                keys.enableLongPress(firstKey + i, false, {700});
        }
        return true;
    }
    return false;
}

/// Registers further keys, which are never pressed, up to a total of @p number.
void registerOthers(BasicKeyInputHandler &keys, int number, int keyCount)
{
    int missing = number - keyCount;
    for (int code = KEY_MAX; code > 0 && missing > 0; --code) {
        const bool isOfStream = (code >= firstKey && code < firstKey + keyCount)
            || (code >= firstOtherKey && code < firstOtherKey + keyCount);
        if (isOfStream)
            continue;
        keys.registerKey(code, InputEvent::Info, true);
        --missing;
    }
}

void setUpLog(bool isDebug)
{
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.addAppender(log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    root.setLogLevel(isDebug ? log4cplus::DEBUG_LOG_LEVEL : log4cplus::WARN_LOG_LEVEL);
}

} // namespace

int main(int argc, char **argv)
{
    const log4cplus::Initializer initializer;
    QCoreApplication application(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral("The library as a subject of the benchmark."));
    options.addHelpOption();
    const QCommandLineOption debug(
        QStringLiteral("debug"),
        QStringLiteral("Log at DEBUG, to an appender that drops everything."));
    const QCommandLineOption devices(QStringLiteral("devices"),
                                     QStringLiteral("Read event0 to event(<n> - 1)."),
                                     QStringLiteral("n"), QStringLiteral("1"));
    const QCommandLineOption registered(QStringLiteral("registered"),
                                        QStringLiteral("Register <n> keys in total."),
                                        QStringLiteral("n"), QStringLiteral("0"));
    const QCommandLineOption pressed(QStringLiteral("keys"),
                                     QStringLiteral("Number of these that are pressed."),
                                     QStringLiteral("n"), QStringLiteral("8"));
    options.addOptions({debug, devices, registered, pressed});
    options.addPositionalArgument(
        QStringLiteral("stream"),
        QStringLiteral("unmapped, immediate, deferred, chords, held or switches"));
    options.process(application);
    const QString stream = options.positionalArguments().value(0);
    const int keyCount = options.value(pressed).toInt();
    setUpLog(options.isSet(debug));

    std::vector<std::unique_ptr<LinuxInputListener>> listeners;
    std::vector<std::unique_ptr<InputHandler>> handlers;
    for (int number = 0; number < options.value(devices).toInt(); ++number) {
        const QString node = QStringLiteral("/dev/input/event%1").arg(number);
        LinuxInputListener::Type type = LinuxInputListener::Key;
        if (stream == QLatin1String("switches")) {
            type = LinuxInputListener::Switch;
            auto handler = std::make_unique<BasicSwInputHandler>(node);
            handler->registerSwitch(switchCode, InputEvent::SWLineIn);
            handlers.push_back(std::move(handler));
        } else {
            auto handler = std::make_unique<BasicKeyInputHandler>(node);
            if (!registerStream(*handler, stream, keyCount)) {
                std::fprintf(stderr, "unknown stream '%s'\n", qUtf8Printable(stream));
                return 2;
            }
            registerOthers(*handler, options.value(registered).toInt(), keyCount);
            handlers.push_back(std::move(handler));
        }
        auto listener = std::make_unique<LinuxInputListener>(handlers.back().get(), node, type);
        handlers.back()->setListener(listener.get());
        listeners.push_back(std::move(listener));
    }
    QObject::connect(Input::instance(), &Input::inputEvent, &application,
                     [](const InputEvent &) { countResult(); });
    return QCoreApplication::exec();
}
