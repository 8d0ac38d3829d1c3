// What the logging properties of docs/field cost on the whole way of a click, written to a file.

#include "Measure.h"

#include "BasicInputHandler.h"
#include "InputSubsystem.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <log4cplus/configurator.h>
#include <log4cplus/helpers/property.h>
#include <log4cplus/hierarchy.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

#include <string>

namespace {

using Vorn::Sim::DeviceDescription;
using Vorn::Sim::InputNode;
using Vorn::Sim::InputSubsystem;

/// Logs as a properties file says, to a file of its own.
class PropertiesLogging
{
public:
    explicit PropertiesLogging(const std::string &properties)
    {
        log4cplus::helpers::Properties read(properties);
        // A file that is missing has no properties, and logging nothing would be cheap.
        if (read.size() == 0)
            qFatal("no properties in %s", properties.c_str());
        read.setProperty("log4cplus.appender.LOG.File",
                         m_folder.filePath(QStringLiteral("player.log")).toStdString());
        log4cplus::Logger::getDefaultHierarchy().resetConfiguration();
        log4cplus::PropertyConfigurator(read).configure();
    }
    ~PropertiesLogging()
    {
        log4cplus::Logger::getDefaultHierarchy().resetConfiguration();
        log4cplus::Logger root = log4cplus::Logger::getRoot();
        root.addAppender(m_silence);
        root.setLogLevel(log4cplus::WARN_LOG_LEVEL);
    }
    PropertiesLogging(const PropertiesLogging &) = delete;
    PropertiesLogging &operator=(const PropertiesLogging &) = delete;

private:
    const log4cplus::SharedAppenderPtr m_silence{new log4cplus::NullAppender};
    QTemporaryDir m_folder;
};

class Panel : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &name) override
    {
        auto *keys = new BasicKeyInputHandler(name);
        addKeyHandler(device, keys, QString());
        keys->registerKey(KEY_OK, InputEvent::Confirm, false);
    }
};

// A panel with a jack, as most have: both of its listeners read every record.
void click(benchmark::State &state, const char *properties)
{
    const PropertiesLogging logging(std::string(VORN_SOURCE_DIR "/docs/field/") + properties);
    InputSubsystem subsystem;
    subsystem.setRecording(false);
    Panel panel;
    InputNode &node = subsystem.plug(0,
                                     DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_OK})
                                         .withSwitches({SW_LINEIN_INSERT}));
    const auto settle = [] {
        for (int turn = 0; turn < 4; ++turn)
            QCoreApplication::processEvents();
    };
    settle();
    measure(state, "click", 1, [&] {
        node.press(KEY_OK);
        settle();
        node.release(KEY_OK);
        settle();
    });
}
BENCHMARK_CAPTURE(click, service, "../../examples/player/player.properties")
    ->Name("FieldLog/click, warnings only");
BENCHMARK_CAPTURE(click, field, "field.properties")->Name("FieldLog/click, field.properties");
BENCHMARK_CAPTURE(click, bench, "bench.properties")->Name("FieldLog/click, bench.properties");

} // namespace
