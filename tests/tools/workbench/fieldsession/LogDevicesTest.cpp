#include "LogDevices.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

using Opened = Said::ListenerOpened;
using Result = Opened::Result;

const QString path = QStringLiteral("/dev/input/event0");

/// "path name bus keys switches" of what was opened by these lines.
std::string opened(const std::vector<LibraryMessage> &lines)
{
    LogDevices devices;
    for (const LibraryMessage &line : lines)
        devices.take(line);
    const LogDevicePtr device = devices.finishOpening();
    if (!device)
        return "none";
    return QStringLiteral("%1 '%2' %3%4%5")
        .arg(device->path, device->name)
        .arg(static_cast<int>(device->bus))
        .arg(device->readsKeys ? " keys" : "", device->readsSwitches ? " switches" : "")
        .toStdString();
}

} // namespace

TEST(LogDevices, AreWhatTheirListenersSay)
{
    const std::string front = "/dev/input/event0 ";
    EXPECT_EQ(opened({}), "none");
    EXPECT_EQ(opened({Said::NodeNamed{path, "panel"}}), "none");
    EXPECT_EQ(opened({Opened{path, Result::Ready}}), front + "'' 0 keys");
    EXPECT_EQ(opened({Opened{path, Result::Ready}, Opened{path, Result::NoSwitches}}),
              front + "'' 0 keys");
    EXPECT_EQ(opened({Opened{path, Result::Ready}, Opened{path, Result::Ready}}),
              front + "'' 0 keys switches");
    EXPECT_EQ(opened({Opened{path, Result::NoKeys}, Opened{path, Result::Ready}}),
              front + "'' 0 switches");
    EXPECT_EQ(opened({Opened{path, Result::NoKeys}, Opened{path, Result::NoSwitches}}),
              front + "'' 0");
    EXPECT_EQ(opened({Opened{path, Result::NoSwitches}}), front + "'' 0");
    EXPECT_EQ(opened({Opened{path, Result::CannotOpen}, Opened{path, Result::CannotOpen}}),
              front + "'' 0");
    EXPECT_EQ(opened({Opened{path, Result::Ready}, Said::ListenerBus{25}}), front + "'' 2 keys");
    EXPECT_EQ(opened({Said::ListenerBus{25}, Said::ListenerName{"x"}, Opened{path, Result::Ready}}),
              front + "'' 0 keys")
        << "of another one";
}

TEST(LogDevices, HaveTheNameThatTheProductGot)
{
    EXPECT_EQ(opened({Said::NodeNamed{path, "panel"}, Opened{path, Result::Ready},
                      Said::ListenerName{"keys"}}),
              "/dev/input/event0 'panel' 0 keys");
    EXPECT_EQ(opened({Opened{path, Result::Ready}, Said::ListenerName{"keys"}}),
              "/dev/input/event0 'keys' 0 keys");
}

TEST(LogDevices, AreOfTheLinkByTheirName)
{
    EXPECT_EQ(opened({Opened{path, Result::Ready}, Said::ListenerBus{25},
                      Said::ListenerName{"hostlink"}}),
              "/dev/input/event0 'hostlink' 1 keys");
    EXPECT_EQ(opened({Opened{path, Result::Ready}, Said::ListenerName{"hostlink"}}),
              "/dev/input/event0 'hostlink' 0 keys")
        << "the listener had not asked for its bus";
}

TEST(LogDevices, AreOpenedByTwoListenersInARow)
{
    LogDevices devices;
    EXPECT_FALSE(devices.continuesOpening(Said::ListenerBus()));
    EXPECT_FALSE(devices.continuesOpening(Opened{path, Result::Ready}));
    devices.take(Opened{path, Result::Ready});
    EXPECT_TRUE(devices.continuesOpening(Said::ListenerBus()));
    EXPECT_TRUE(devices.continuesOpening(Said::ListenerName()));
    EXPECT_TRUE(devices.continuesOpening(Said::TypesUnknown()));
    EXPECT_TRUE(devices.continuesOpening(Opened{path, Result::NoSwitches}));
    EXPECT_FALSE(devices.continuesOpening(Opened{"/dev/input/event1", Result::Ready}));
    EXPECT_FALSE(devices.continuesOpening(Said::NodeAdded{path}));
    EXPECT_FALSE(devices.continuesOpening(Said::RecordLogged()));
    devices.take(Opened{path, Result::NoSwitches});
    EXPECT_FALSE(devices.continuesOpening(Opened{path, Result::Ready})) << "the third";
    ASSERT_TRUE(devices.finishOpening());
    EXPECT_FALSE(devices.finishOpening());
    EXPECT_FALSE(devices.continuesOpening(Said::ListenerName()));
}

TEST(LogDevices, ShowThatTheProgramHasStartedAgain)
{
    LogDevices devices;
    EXPECT_FALSE(devices.isNewStart(Said::NodeAdded{path}));
    EXPECT_FALSE(devices.isNewStart(Opened{path, Result::Ready}));
    devices.take(Opened{path, Result::Ready});
    EXPECT_FALSE(devices.isNewStart(Opened{path, Result::Ready}));
    devices.finishOpening();
    EXPECT_TRUE(devices.isNewStart(Said::NodeAdded{path}));
    EXPECT_TRUE(devices.isNewStart(Opened{path, Result::Ready}));
    EXPECT_FALSE(devices.isNewStart(Said::NodeAdded{"/dev/input/event1"}));
    EXPECT_FALSE(devices.isNewStart(Opened{"/dev/input/event1", Result::Ready}));
    EXPECT_FALSE(devices.isNewStart(Said::NodeRemoved{path}));
}

TEST(LogDevices, AreGoneOnceTheyAreRemoved)
{
    LogDevices devices;
    devices.take(Said::NodeNamed{path, "panel"});
    devices.take(Opened{path, Result::Ready});
    const LogDevicePtr panel = devices.finishOpening();
    devices.take(Opened{"/dev/input/event1", Result::NoKeys});
    devices.finishOpening();
    EXPECT_EQ(devices.present(), QVector<LogDevicePtr>{panel}) << "nothing reads the other one";
    EXPECT_EQ(devices.at(path), panel);
    EXPECT_EQ(devices.remove(path), panel);
    EXPECT_EQ(devices.remove(path), nullptr);
    EXPECT_EQ(devices.at(path), nullptr);
    devices.take(Opened{path, Result::Ready});
    EXPECT_EQ(devices.finishOpening()->name, "") << "the name was the old one's";
}
