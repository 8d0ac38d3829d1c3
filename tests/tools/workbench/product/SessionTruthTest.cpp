#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "EventRecorder.h"
#include "InputProbe.h"
#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "Product.h"
#include "Session.h"
#include "SessionLikeness.h"
#include "SessionLog.h"
#include "TakenLog.h"
#include "VirtualClock.h"

#include <QAbstractEventDispatcher>
#include <QEventLoop>
#include <QTimer>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using Vorn::InputProbe;
using namespace Vorn::Sim;
using namespace Vorn;
using namespace Vorn::Workbench;

/*
 *  Random sessions on simulated devices, with an application that selects, registers, runs event
 *  loops and unplugs devices from inside its slot. The session must say the same as
 *   - what the library itself wrote to its loggers, line by line,
 *   - what is read from these lines as from a log,
 *   - a recorder on the bus,
 *  and what it says about long presses must have come true.
 */

namespace {

constexpr qint64 tick = 55'000; // µs; a coarse timer's may be late

constexpr int panelNumber = 0;
constexpr int remoteNumber = 1;
constexpr int jacksNumber = 2;

/// A key of one of the two devices, so that a code tells the device and a command the key.
struct Key
{
    int device;
    int code;
    InputEvent::Command command;
    InputEvent::Command otherCommand;
    bool hasLongPress;
};

const std::array<Key, 8> keys{{
    {panelNumber, KEY_A, InputEvent::CharA, InputEvent::CharCapA, true},
    {panelNumber, KEY_B, InputEvent::CharB, InputEvent::CharCapB, true},
    {panelNumber, KEY_C, InputEvent::CharC, InputEvent::CharCapC, false},
    {panelNumber, KEY_D, InputEvent::CharD, InputEvent::CharCapD, false},
    {remoteNumber, KEY_1, InputEvent::Number1, InputEvent::CharExclamation, true},
    {remoteNumber, KEY_2, InputEvent::Number2, InputEvent::CharAt, true},
    {remoteNumber, KEY_3, InputEvent::Number3, InputEvent::CharHash, false},
    {remoteNumber, KEY_4, InputEvent::Number4, InputEvent::CharDollar, false},
}};

struct Chord
{
    int first;
    int second;
    InputEvent::Command command;
};

const std::array<Chord, 3> chords{{
    {KEY_A, KEY_B, InputEvent::FactoryReset},
    {KEY_C, KEY_A, InputEvent::Sleep},
    {KEY_1, KEY_3, InputEvent::Power},
}};

const char *const identifiers[] = {"", "text", "empty"};
const char *const deviceNames[] = {"panel", "remote", "jacks"};

/// The keys or the switch that a command belongs to.
QVector<int> codesOf(InputEvent::Command command)
{
    for (const Key &key : keys) {
        if (key.command == command || key.otherCommand == command)
            return {key.code};
    }
    for (const Chord &chord : chords) {
        if (chord.command == command)
            return {chord.first, chord.second};
    }
    return {SW_LINEIN_INSERT};
}

std::string eventText(const std::string &device, const std::string &event)
{
    std::string text = "event of ";
    return text.append(device).append(" ").append(event);
}

class RandomSession
{
public:
    explicit RandomSession(unsigned seed)
        : m_random(seed)
    { }

    /// @return the differences found
    std::vector<std::string> run();

private:
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(m_random); }
    bool isLucky(int oneIn) { return below(oneIn) == 0; }

    Profile profile();
    HandlerProfile handler(int device);
    KeyMapping mapping(const Key &key);
    QList<int> timeouts();
    void plug(int number);
    void act();
    void onEvent();
    void changeRegistrations();

    std::vector<std::string> expectedSteps() const;
    std::vector<std::string> statedSteps() const;
    void checkRecords();
    void checkBus(const std::vector<std::string> &published);
    void checkCauses();
    void checkLongPresses();
    qint64 afterWaits(qint64 time) const;
    void compare(const std::string &what, const std::vector<std::string> &stated,
                 const std::vector<std::string> &happened);

    std::mt19937 m_random;
    VirtualClock m_clock;
    InputSubsystem m_subsystem;
    std::vector<SessionEntry> m_entries;
    std::vector<LogLine> m_lines;
    std::unique_ptr<Product> m_product;
    std::array<InputNode *, 3> m_nodes{};
    bool m_isUnplugging = false;
    int m_depth = 0; ///< slots that are running
    int m_loops = 0; ///< event loops in them
    std::vector<std::pair<qint64, qint64>> m_waits; ///< when these ran, µs
    std::vector<std::string> m_differences;
};

QList<int> RandomSession::timeouts()
{
    QList<int> list;
    for (int i = below(3); i >= 0; --i)
        list += 50 + below(8) * 50;
    return list;
}

KeyMapping RandomSession::mapping(const Key &key)
{
    KeyMapping mapping;
    mapping.code = key.code;
    mapping.command = isLucky(3) ? key.otherCommand : key.command;
    mapping.immediate = isLucky(2);
    if (key.hasLongPress && !isLucky(3))
        mapping.longPress = LongPress{timeouts(), isLucky(2)};
    return mapping;
}

HandlerProfile RandomSession::handler(int device)
{
    HandlerProfile handler;
    for (const Key &key : keys) {
        if (key.device == device && !isLucky(5))
            handler.keys += mapping(key);
    }
    for (const Chord &chord : chords) {
        const bool isPanel = chord.first != KEY_1;
        if (isPanel == (device == panelNumber) && !isLucky(3))
            handler.chords += ChordMapping{chord.first, chord.second, chord.command, {}};
    }
    return handler;
}

Profile RandomSession::profile()
{
    Profile profile;
    for (const int number : {panelNumber, remoteNumber}) {
        DeviceProfile device;
        device.name = deviceNames[number];
        device.handlers += handler(number);
        HandlerProfile text = handler(number);
        text.identifiers = QStringList{"text"};
        device.handlers += text;
        profile.devices += device;
    }
    DeviceProfile jacks;
    jacks.name = deviceNames[jacksNumber];
    HandlerProfile switches;
    switches.switches = {{SW_LINEIN_INSERT, InputEvent::SWLineIn}};
    switches.positionsAtStart = true;
    jacks.handlers += switches;
    profile.devices += jacks;
    for (int i = below(3); i > 0; --i) {
        const Key &key = keys[static_cast<std::size_t>(below(keys.size()))];
        const auto state = static_cast<InputEvent::State>(1 + below(3));
        profile.select += SelectRule{key.command, state, identifiers[below(3)]};
    }
    return profile;
}

void RandomSession::plug(int number)
{
    if (number == jacksNumber) {
        m_nodes[jacksNumber] = &m_subsystem.plug(
            number, DeviceDescription::switchBox("jacks", BUS_HOST, {SW_LINEIN_INSERT}));
        return;
    }
    QVector<int> codes;
    for (const Key &key : keys) {
        if (key.device == number)
            codes += key.code;
    }
    m_nodes[static_cast<std::size_t>(number)] =
        &m_subsystem.plug(number, DeviceDescription::keyboard(deviceNames[number], BUS_USB, codes));
}

void RandomSession::act()
{
    const Key &key = keys[static_cast<std::size_t>(below(keys.size()))];
    InputNode *node = m_nodes[static_cast<std::size_t>(key.device)];
    const int number = below(3);
    switch (below(16)) {
    case 0:
        // The library removes a device in the next turn of an event loop. It must not be one inside
        // a slot: nothing may delete a handler there.
        if (m_depth > 0)
            break;
        if (m_nodes[static_cast<std::size_t>(number)]->isPlugged()) {
            m_subsystem.unplug(number);
            m_isUnplugging = true;
        } else {
            plug(number);
        }
        break;
    case 1:
        m_product->selectHandler(identifiers[below(3)]);
        break;
    case 2:
        if (m_nodes[jacksNumber]->isPlugged())
            m_nodes[jacksNumber]->setSwitch(SW_LINEIN_INSERT, isLucky(2));
        break;
    case 3:
        if (node->isPlugged())
            node->send({InputNode::record(EV_KEY, key.code, below(3), m_clock.now()),
                        InputNode::record(EV_SYN, SYN_REPORT, 0, m_clock.now())});
        break;
    case 4:
    case 5:
    case 6:
        if (m_depth == 0) {
            m_clock.advance(std::chrono::milliseconds(below(700)));
            m_isUnplugging = false;
        }
        break;
    default:
        if (!node->isPlugged())
            break;
        // Several records in one read.
        for (int i = below(3); i >= 0; --i) {
            const Key &other = keys[static_cast<std::size_t>(below(keys.size()))];
            if (other.device == key.device)
                node->report(EV_KEY, other.code, node->isKeyDown(other.code) ? 0 : 1);
        }
        node->sync();
    }
}

/// On the handler that takes the keys of a device now. Keys that may be timed keep a timeout: the
/// library does not survive a timed key without one.
void RandomSession::changeRegistrations()
{
    const Key &key = keys[static_cast<std::size_t>(below(keys.size()))];
    const LinuxInputListener *listener =
        InputProbe::keyListener(*m_product, QStringLiteral("/dev/input/event%1").arg(key.device));
    auto *handler =
        listener ? qobject_cast<BasicKeyInputHandler *>(InputProbe::receiver(*listener)) : nullptr;
    if (!handler)
        return;
    const Chord &chord = chords[static_cast<std::size_t>(below(chords.size()))];
    const InputEvent::Command command = isLucky(2) ? key.command : key.otherCommand;
    switch (below(5)) {
    case 0:
        if (key.hasLongPress)
            handler->registerKey(key.code, listener->bus(), command, isLucky(2));
        else
            handler->registerKey(key.code, command, isLucky(2));
        break;
    case 1:
        if (!key.hasLongPress)
            handler->deregisterKey(key.code);
        break;
    case 2:
        if (key.hasLongPress && InputProbe::keys(*handler).contains(key.code))
            handler->enableLongPress(key.code, isLucky(2), timeouts());
        break;
    case 3:
        handler->deregisterDoubleKey(chord.first, chord.second);
        break;
    default:
        handler->registerDoubleKey(chord.first, chord.second, chord.command);
    }
}

/// With Qt's GLib dispatcher an event loop in a slot may read what the loop around it is about to
/// read, which then waits for ever: the library's reads block. With QT_NO_GLIB it reads as well.
QEventLoop::ProcessEventsFlags loopFlags()
{
    const QByteArray dispatcher = QAbstractEventDispatcher::instance()->metaObject()->className();
    return dispatcher.contains("Glib") ? QEventLoop::ExcludeSocketNotifiers : QEventLoop::AllEvents;
}

void RandomSession::onEvent()
{
    if (m_depth >= 2)
        return;
    ++m_depth;
    switch (below(12)) {
    case 0:
        m_product->selectHandler(identifiers[below(3)]);
        break;
    case 1:
        act();
        break;
    case 2:
        if (!m_isUnplugging) {
            act();
            QEventLoop loop;
            QTimer::singleShot(below(300), Qt::PreciseTimer, &loop, &QEventLoop::quit);
            const qint64 begin = m_clock.elapsed().count() * 1000;
            ++m_loops;
            loop.exec(loopFlags());
            --m_loops;
            m_waits.emplace_back(begin, m_clock.elapsed().count() * 1000);
        }
        break;
    case 3:
    case 4:
        changeRegistrations();
        break;
    case 5: {
        const int number = below(3);
        if (m_loops == 0 && m_nodes[static_cast<std::size_t>(number)]->isPlugged()) {
            m_subsystem.unplug(number);
            m_isUnplugging = true;
        }
        break;
    }
    default:
        break;
    }
    --m_depth;
}

std::vector<std::string> RandomSession::run()
{
    LogRecorder recorder;
    const TakenLog taken;
    SessionLog log([this](const SessionEntry &entry) { m_entries.push_back(entry); });
    m_product = std::make_unique<Product>(profile(), &log);
    // Connected behind the product, so that it hears of an event before anything reacts to it.
    EventRecorder bus;
    bus.onEvent([this](const InputEvent &) { onEvent(); });
    for (const int number : {panelNumber, remoteNumber, jacksNumber})
        plug(number);
    m_clock.settle();
    const int actions = 20 + below(60);
    for (int i = 0; i < actions; ++i) {
        act();
        m_clock.settle();
        m_isUnplugging = false;
    }
    m_clock.advance(std::chrono::milliseconds(500));
    m_product.reset();
    m_lines = recorder.lines();
    compare("steps", statedSteps(), expectedSteps());
    checkRecords();
    checkBus(bus.texts());
    checkCauses();
    checkLongPresses();
    for (const std::string &difference :
         differences(m_entries, taken.session(), Times::OfOthersThanRecords))
        m_differences.push_back("read from the log: " + difference);
    return m_differences;
}

void RandomSession::compare(const std::string &what, const std::vector<std::string> &stated,
                            const std::vector<std::string> &happened)
{
    for (std::size_t i = 0; i < std::max(stated.size(), happened.size()); ++i) {
        const std::string said = i < stated.size() ? stated[i] : "nothing";
        const std::string was = i < happened.size() ? happened[i] : "nothing";
        if (said == was)
            continue;
        std::ostringstream difference;
        difference << what << " " << i << ": stated " << said << ", but happened " << was;
        m_differences.push_back(difference.str());
        return;
    }
}

/// What the library's lines say that its detectors and handlers did.
std::vector<std::string> RandomSession::expectedSteps() const
{
    const std::regex stored(
        "Stored:\\(input_event: code:(\\d+) .*, input_event: code:(\\d+) .*\\)");
    const std::regex key("key:(\\d+) value (\\d)");
    const std::regex report("Device: (.*); id: .*; command (.*)");
    std::set<std::pair<std::string, std::string>> pairs;
    std::vector<std::string> steps;
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        const std::string &text = m_lines[i].text;
        std::smatch first;
        std::smatch second;
        if (std::regex_match(text, first, stored))
            pairs.insert({first[1], first[2]});
        if (text == "Double key press detected and new press event received -> drop") {
            steps.emplace_back("dropped third");
        } else if (text == "Received release for non existing press -> drop") {
            steps.emplace_back("dropped release");
        } else if (std::regex_match(text, first, report)) {
            steps.push_back(eventText(first[1].str(), first[2].str()));
        } else if (i > 0 && std::regex_match(text, first, key)) {
            const bool isPair = i + 1 < m_lines.size()
                && std::regex_match(m_lines[i + 1].text, second, key)
                && pairs.count({first[1], second[1]}) > 0;
            const bool isAfterPair = std::regex_match(m_lines[i - 1].text, stored);
            if (isPair) {
                const std::string names = first[1].str() + "+" + second[1].str();
                steps.push_back((first[2] == "0" && second[2] == "0" ? "released " : "chord ")
                                + names);
                ++i;
            } else if (isAfterPair) {
                steps.push_back("withdrawn " + first[1].str());
            }
        }
    }
    return steps;
}

std::vector<std::string> RandomSession::statedSteps() const
{
    using Step = DetectorStep::What;
    std::map<QString, QString> names;
    std::vector<std::string> steps;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        const auto &what = m_entries[i].what;
        if (const auto *change = std::get_if<DeviceChange>(&what))
            names[change->device] = change->name;
        if (const auto *event = std::get_if<EventPublished>(&what)) {
            const InputEvent logged(event->command, event->state, InputEvent::Bus::NoBus);
            steps.push_back(
                eventText(names[event->device].toStdString(), logged.toString().toStdString()));
        }
        const auto *step = std::get_if<DetectorStep>(&what);
        if (!step)
            continue;
        std::string codes;
        for (const int code : step->keys)
            codes += (codes.empty() ? "" : "+") + std::to_string(code);
        if (step->what == Step::FirstKeyWithdrawn)
            steps.push_back("withdrawn " + codes);
        else if (step->what == Step::ChordFound)
            steps.push_back("chord " + codes);
        else if (step->what == Step::ChordReleased)
            steps.push_back("released " + codes);
        if (step->what != Step::Dropped)
            continue;
        const auto *outcome =
            i + 1 < m_entries.size() ? std::get_if<RecordOutcome>(&m_entries[i + 1].what) : nullptr;
        const bool isThird = outcome && outcome->reason.startsWith("dropped, since ");
        steps.emplace_back(isThird ? "dropped third" : "dropped release");
    }
    return steps;
}

/// Each listener logs what it reads; a code tells the device.
void RandomSession::checkRecords()
{
    const std::regex line(" type: (\\d+) code:(\\d+) value:(\\d+)");
    std::map<std::string, std::vector<std::string>> read;
    std::map<std::string, std::vector<std::string>> stated;
    std::map<std::string, std::vector<std::string>> outcomes;
    for (const LogLine &logged : m_lines) {
        std::smatch found;
        if (std::regex_match(logged.text, found, line) && found[1] != "0")
            read[found[2]].push_back(found[3]);
    }
    for (const SessionEntry &entry : m_entries) {
        if (const auto *record = std::get_if<RecordRead>(&entry.what)) {
            if (record->type != EV_SYN)
                stated[std::to_string(record->code)].push_back(std::to_string(record->value));
        } else if (const auto *outcome = std::get_if<RecordOutcome>(&entry.what)) {
            outcomes[std::to_string(outcome->code)].push_back(std::to_string(outcome->value));
        }
    }
    // In any order: an application's event loop may read again before the handler has taken all
    // records of the batch, and what it reads is then taken first.
    const auto sorted = [](std::vector<std::string> values) {
        std::sort(values.begin(), values.end());
        return values;
    };
    for (const auto &[code, values] : read) {
        compare("records of " + code, sorted(stated[code]), sorted(values));
        compare("outcomes of " + code, sorted(outcomes[code]), sorted(values));
    }
}

void RandomSession::checkBus(const std::vector<std::string> &published)
{
    std::vector<std::string> stated;
    for (const SessionEntry &entry : m_entries) {
        if (const auto *event = std::get_if<EventPublished>(&entry.what))
            stated.push_back(
                InputEvent(event->command, event->state, event->bus).toString().toStdString());
    }
    compare("bus", stated, published);
}

/// Every event has the keys that its command belongs to, and every record the events it caused.
void RandomSession::checkCauses()
{
    std::size_t caused = 0;
    std::size_t expected = 0;
    for (const SessionEntry &entry : m_entries) {
        if (const auto *outcome = std::get_if<RecordOutcome>(&entry.what)) {
            caused += static_cast<std::size_t>(outcome->events.size());
            const bool isPublished = outcome->what == RecordOutcome::What::Published;
            if (isPublished == outcome->events.isEmpty()
                || (!isPublished && outcome->reason.isEmpty()))
                m_differences.emplace_back("an outcome without a reason");
        }
        const auto *event = std::get_if<EventPublished>(&entry.what);
        if (!event)
            continue;
        const bool isQueried = !event->latency;
        const bool isLongPress = event->state == InputEvent::KeyLongPress;
        if (isQueried && event->type != EV_SW)
            m_differences.emplace_back("an event of a key without latency");
        expected += isQueried || isLongPress ? 0 : 1;
        QVector<int> codes = event->codes;
        QVector<int> owners = codesOf(event->command);
        std::sort(codes.begin(), codes.end());
        std::sort(owners.begin(), owners.end());
        if (codes != owners)
            m_differences.push_back("wrong keys for " + commandName(event->command).toStdString());
    }
    if (caused != expected)
        m_differences.push_back("records caused " + std::to_string(caused) + " events of "
                                + std::to_string(expected));
}

/// The end of the event loop in a slot that runs until the tick after that time, if there is one,
/// and of those that follow it at once.
qint64 RandomSession::afterWaits(qint64 time) const
{
    for (const auto &[begin, end] : m_waits) {
        if (begin - tick <= time && time < end)
            return afterWaits(end);
    }
    return time;
}

/// A long press comes at the first tick after it was stated to be due, and not if that was taken
/// back. While a slot that the tick called runs an event loop, there are no ticks.
void RandomSession::checkLongPresses()
{
    using Step = DetectorStep::What;
    std::map<std::pair<int, QString>, qint64> due; // by key and handler
    for (const SessionEntry &entry : m_entries) {
        for (const auto &[key, time] : due) {
            if (entry.time > time + 2 * tick)
                m_differences.push_back("the long press of " + std::to_string(key.first)
                                        + " never came");
        }
        if (const auto *step = std::get_if<DetectorStep>(&entry.what)) {
            const std::pair<int, QString> key(step->keys.first(), step->identifier);
            if (step->what == Step::LongPressDue)
                due[key] = afterWaits(std::max(step->due, entry.time));
            else if (step->what == Step::LongPressEnded)
                due.erase(key);
        }
        const auto *event = std::get_if<EventPublished>(&entry.what);
        if (!event || event->state != InputEvent::KeyLongPress)
            continue;
        // The one of its handlers that was due first.
        auto found = due.end();
        for (auto it = due.begin(); it != due.end(); ++it) {
            const bool isSooner = found == due.end() || it->second < found->second;
            if (it->first.first == event->codes.first() && isSooner)
                found = it;
        }
        if (found == due.end())
            m_differences.emplace_back("a long press that was not due");
        else
            due.erase(found);
    }
}

/// More of them for a long run by hand.
unsigned sessionCount()
{
    const char *count = std::getenv("VORN_RANDOM_SESSIONS");
    return count ? static_cast<unsigned>(std::strtoul(count, nullptr, 10)) : 200U;
}

} // namespace

TEST(SessionTruth, SaysWhatTheLibraryAndTheBusSay)
{
    for (unsigned seed = 1; seed <= sessionCount(); ++seed) {
        ASSERT_THAT(RandomSession(seed).run(), testing::IsEmpty()) << "seed " << seed;
    }
}

/// Slots that run event loops or select in the middle of a click or a chord.
TEST(SessionTruth, HoldsForSlotsThatInterfereWithKeys)
{
    for (const unsigned seed :
         {262U, 315U, 386U,  460U,  480U,  482U,  621U,  629U,  768U,  878U, 901U,
          931U, 964U, 1214U, 1286U, 1334U, 1529U, 1539U, 1634U, 1965U, 1990U})
    {
        EXPECT_THAT(RandomSession(seed).run(), testing::IsEmpty()) << "seed " << seed;
    }
}
