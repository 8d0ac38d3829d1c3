#ifndef VORN_WORKBENCH_SCENARIOREADER_H
#define VORN_WORKBENCH_SCENARIOREADER_H

#include "ScenarioLine.h"
#include "ScenarioParser.h"
#include "TextFile.h"

#include <QSet>

namespace Vorn::Workbench {

/// Builds a Scenario from its lines. It keeps track of which devices are plugged in and which keys
/// are down, so that a step that could do nothing is told of.
class ScenarioReader
{
public:
    explicit ScenarioReader(const FileReader &readInclude);

    /// Reads all lines of a file, and of those that it includes.
    void readFile(const QByteArray &text, const QString &file);

    /// What was read.
    ParsedScenario take();

private:
    /// How a device is after the steps so far.
    struct DeviceState
    {
        bool isPlugged = false;
        QSet<int> keysDown;
        QSet<int> switchesOn;
    };

    void readLine(ScenarioLine *line);
    void readProfile(ScenarioLine *line);
    void readInclude(ScenarioLine *line);
    void readStart(ScenarioLine *line);
    void readWait(ScenarioLine *line);
    void readClock(ScenarioLine *line);
    void readSelect(ScenarioLine *line);
    void readInputDirectory(ScenarioLine *line);
    void readPlay(ScenarioLine *line);
    void readIgnore(ScenarioLine *line);

    // ScenarioDevices.cpp
    void readDevice(ScenarioLine *line);
    void readDeviceOptions(ScenarioLine *line, ScenarioDevice *device, bool *isUnplugged);
    void readDeviceOption(ScenarioLine *line, const ScenarioWord &word, ScenarioDevice *device);
    void checkHostlink(ScenarioLine *line, const ScenarioDevice &device) const;
    void checkDevice(ScenarioLine *line, const ScenarioDevice &device) const;
    void readAction(ScenarioLine *line, int device);
    void readKeys(ScenarioLine *line, int device, const QString &action);
    void readHold(ScenarioLine *line, int device, bool isClick);
    void readSwitch(ScenarioLine *line, int device);
    void readRecord(ScenarioLine *line, int device);
    void readUnplug(ScenarioLine *line, int device);
    void readReplace(ScenarioLine *line, int device);
    std::optional<int> takeKey(ScenarioLine *line, int device);
    std::optional<int> takeSwitch(ScenarioLine *line, int device);
    bool setKey(ScenarioLine *line, int device, int code, bool down);
    void plugged(int device);
    int deviceNamed(const QString &label) const;
    QStringList labels() const;

    // ScenarioExpectations.cpp
    void readExpect(ScenarioLine *line);
    void readExpectNothing(ScenarioLine *line);
    bool readExpectOption(ScenarioLine *line, Step::ExpectEvent *event);
    void readAfter(ScenarioLine *line, Step::ExpectEvent *event);

    void add(const ScenarioLine &line, const StepKind &what, bool continues = false);
    void addTime(ScenarioLine *line, qint64 duration);
    bool isFull() const;

    const FileReader m_readInclude;
    ParsedScenario m_result;
    QStringList m_openFiles;
    int m_lines = 0;
    int m_hostlinkColumn = 0; ///< where the device being read is put on that bus; 0: nowhere
    bool m_hasEffect = false; ///< whether a step so far takes effect
    bool m_directoryExists = true;
    qint64 m_duration = 0; ///< of all waits
    qint64 m_wallClock = 0; ///< ms since the epoch, without the waits
    QVector<DeviceState> m_states;
};

/// The words that begin a step, but for the names of devices.
QStringList scenarioSteps();

/// The library's or the kernel's name of a bus, or its number, as the kernel's number.
std::optional<int> busNumber(const QString &text);

} // namespace Vorn::Workbench

#endif
