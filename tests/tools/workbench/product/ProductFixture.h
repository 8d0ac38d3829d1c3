#ifndef PRODUCTFIXTURE_H
#define PRODUCTFIXTURE_H

#include "BusNames.h"
#include "EventNames.h"
#include "InputSubsystem.h"
#include "Product.h"
#include "Session.h"
#include "SessionLog.h"
#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Vorn::Workbench {

inline QString names(const QVector<int> &codes, int type = EV_KEY)
{
    QStringList list;
    for (const int code : codes)
        list += eventCodeName(type, code);
    return list.join('+');
}

/// An entry in brief.
struct Describe
{
    QString operator()(const SessionStart &) const { return QStringLiteral("start"); }
    QString operator()(const DeviceChange &change) const
    {
        return QStringLiteral("%1%2 %3 %4")
            .arg(change.added ? "+" : "-", change.device, change.name, busName(change.bus));
    }
    QString operator()(const RecordRead &record) const
    {
        return QStringLiteral("%1 %2").arg(eventCodeName(record.type, record.code),
                                           valueName(record.type, record.value));
    }
    QString operator()(const DetectorStep &step) const
    {
        const char *const what[] = {"due",      "ended",   "withdrawn", "chord",
                                    "released", "dropped", "forgotten"};
        QString text =
            QStringLiteral("[%1 %2").arg(what[static_cast<int>(step.what)], names(step.keys));
        if (step.what == DetectorStep::What::LongPressDue)
            text += QStringLiteral(" %1").arg(step.due / 1000);
        if (step.what == DetectorStep::What::ChordFound && !step.mapped)
            text += " unmapped";
        return text + "]";
    }
    QString operator()(const RecordOutcome &outcome) const
    {
        return QStringLiteral("(%1)").arg(outcome.reason);
    }
    QString operator()(const KeyStates &states) const
    {
        QStringList keys;
        for (const KeyState &state : states.keys)
            keys += eventCodeName(EV_KEY, state.code);
        return QStringLiteral("state of %1: %2").arg(states.device, keys.join(' '));
    }
    QString operator()(const EventPublished &event) const
    {
        QString text = InputEvent(event.command, event.state, event.bus).toString();
        text += " of " + names(event.codes, event.type);
        if (event.latency)
            text += QStringLiteral(" after %1").arg(*event.latency / 1000);
        return text;
    }
    QString operator()(const IdentifierSelected &selected) const
    {
        return "select " + selected.identifier;
    }
    QString operator()(const ExpectationChecked &) const { return QStringLiteral("expectation"); }
    QString operator()(const Remark &remark) const { return remark.text; }
};

inline KeyMapping keyOf(int code, InputEvent::Command command, bool isImmediate,
                        const QList<int> &timeouts = {}, bool repeats = false)
{
    KeyMapping key{code, command, isImmediate, {}, {}};
    if (!timeouts.isEmpty())
        key.longPress = LongPress{timeouts, repeats};
    return key;
}

/// A product on simulated devices, and what it logs.
class ProductFixture : public testing::Test
{
protected:
    void start(const Profile &profile)
    {
        m_devices = std::make_unique<Product>(profile, &m_log);
        m_clock.settle();
    }

    /// Plugs in and waits until the library has found the device.
    Sim::InputNode &plug(int number, const Sim::DeviceDescription &description)
    {
        Sim::InputNode &node = m_subsystem.plug(number, description);
        m_clock.waitUntil([&] { return devices().devices().contains(node.path()); });
        return node;
    }

    Sim::InputNode &plugPanel()
    {
        Sim::InputNode &node =
            plug(0,
                 Sim::DeviceDescription::keyboard("front-panel", BUS_HOST,
                                                  {KEY_INFO, KEY_STOP, KEY_PLAY, KEY_VOLUMEUP}));
        take();
        return node;
    }

    Product &devices() { return *m_devices; }
    Sim::InputSubsystem &subsystem() { return m_subsystem; }
    Sim::VirtualClock &clock() { return m_clock; }

    void wait(int ms) { m_clock.advance(std::chrono::milliseconds(ms)); }

    /// What was logged since the last time, without the records of synchronisation and the
    /// outcomes.
    std::vector<std::string> take()
    {
        m_clock.settle();
        std::vector<std::string> texts;
        for (const SessionEntry &entry : std::exchange(m_entries, {})) {
            const auto *record = std::get_if<RecordRead>(&entry.what);
            const bool isSynchronisation = record && record->type == EV_SYN;
            if (!isSynchronisation && !std::holds_alternative<RecordOutcome>(entry.what))
                texts.push_back(std::visit(Describe(), entry.what).toStdString());
        }
        return texts;
    }

    /// What became of the records since the last time.
    std::vector<std::string> takeOutcomes()
    {
        m_clock.settle();
        std::vector<std::string> texts;
        for (const SessionEntry &entry : std::exchange(m_entries, {})) {
            if (const auto *outcome = std::get_if<RecordOutcome>(&entry.what)) {
                QStringList parts{eventCodeName(outcome->type, outcome->code),
                                  valueName(outcome->type, outcome->value),
                                  outcome->events.join(", "), outcome->reason};
                parts.removeAll({});
                texts.push_back(parts.join(' ').toStdString());
            }
        }
        return texts;
    }

    const QVector<SessionEntry> &entries() const { return m_entries; }

    /// Called with each entry as it is passed on: what prints it.
    void setSink(const SessionLog::Sink &sink) { m_sink = sink; }

    static Profile panelProfile()
    {
        HandlerProfile handler;
        handler.keys = {keyOf(KEY_INFO, InputEvent::Info, false, {700}),
                        keyOf(KEY_VOLUMEUP, InputEvent::VolumeUp, true, {800, 200}, true),
                        keyOf(KEY_STOP, InputEvent::Stop, false),
                        keyOf(KEY_PLAY, InputEvent::StartPlay, false)};
        handler.chords = {{KEY_STOP, KEY_PLAY, InputEvent::FactoryReset, {}}};
        DeviceProfile device;
        device.name = QStringLiteral("front-panel");
        device.handlers = {handler};
        Profile profile;
        profile.devices = {device};
        return profile;
    }

private:
    Sim::VirtualClock m_clock;
    Sim::InputSubsystem m_subsystem;
    QVector<SessionEntry> m_entries;
    SessionLog::Sink m_sink;
    SessionLog m_log{[this](const SessionEntry &entry) {
        m_entries.append(entry);
        if (m_sink)
            m_sink(entry);
    }};
    std::unique_ptr<Product> m_devices;
};

} // namespace Vorn::Workbench

#endif
