#include "RuleWarnings.h"

#include "CommandNames.h"
#include "Quoting.h"
#include "Suggestion.h"

#include <QHash>
#include <QPair>
#include <QSet>

namespace Vorn {

namespace {

class RuleWarnings
{
public:
    RuleWarnings(const Profile &profile, const ProfilePlaces &places, Findings *findings)
        : m_profile(profile)
        , m_places(places)
        , m_findings(findings)
    { }

    void findAll();

private:
    using Event = QPair<int, int>; ///< a command and a state it is reported with

    void collectEvents(const HandlerProfile &handler);
    void checkSelection();
    void checkRules();
    void warn(const TextPosition &position, const QString &message)
    {
        m_findings->warning(position, message);
    }

    const Profile &m_profile;
    const ProfilePlaces &m_places;
    Findings *const m_findings;
    QStringList m_identifiers;
    QSet<Event> m_events;
    QHash<Event, QSet<QString>> m_whileDown; ///< by the identifiers: reported before a release
};

void RuleWarnings::findAll()
{
    for (const DeviceProfile &device : m_profile.devices) {
        for (const HandlerProfile &handler : device.handlers) {
            m_identifiers += handler.identifiers;
            collectEvents(handler);
        }
    }
    m_identifiers.removeDuplicates();
    checkSelection();
    checkRules();
}

void RuleWarnings::collectEvents(const HandlerProfile &handler)
{
    QSet<int> longPressed;
    for (const KeyMapping &key : handler.keys) {
        if (key.longPress)
            longPressed.insert(key.code);
    }
    const auto addWhileDown = [&](InputEvent::Command command, InputEvent::State state) {
        m_events.insert({command, state});
        for (const QString &identifier : handler.identifiers)
            m_whileDown[{command, state}].insert(identifier);
    };
    for (const KeyMapping &key : handler.keys) {
        if (key.command != InputEvent::None) {
            // A click of a deferred key is reported as a whole, when the key is up again.
            m_events.insert({key.command, InputEvent::KeyPressed});
            m_events.insert({key.command, InputEvent::KeyReleased});
            if (key.immediate)
                addWhileDown(key.command, InputEvent::KeyPressed);
        }
        // A key registered for one bus keeps the long press of an earlier registration.
        if (longPressed.contains(key.code))
            addWhileDown(key.command, InputEvent::KeyLongPress);
    }
    for (const ChordMapping &chord : handler.chords) {
        if (chord.command == InputEvent::None)
            continue;
        addWhileDown(chord.command, InputEvent::KeyPressed);
        m_events.insert({chord.command, InputEvent::KeyReleased});
    }
    for (const SwitchMapping &mapping : handler.switches) {
        m_events.insert({mapping.command, InputEvent::SwitchEnabled});
        m_events.insert({mapping.command, InputEvent::SwitchDisabled});
    }
}

void RuleWarnings::checkSelection()
{
    if (m_identifiers.isEmpty() || m_identifiers.contains(m_profile.initial))
        return;
    if (m_profile.initial.isEmpty()) {
        warn(m_places.root->positionOf("initial"),
             QStringLiteral("the empty identifier is selected at the start, and no handler has it; "
                            "name one in 'initial'"));
    } else {
        warn(m_places.root->positionOf("initial"),
             QStringLiteral("no handler has the identifier %1%2")
                 .arg(quoted(m_profile.initial), suggestion(m_profile.initial, m_identifiers)));
    }
}

void RuleWarnings::checkRules()
{
    const QSet<QString> identifiers(m_identifiers.begin(), m_identifiers.end());
    QHash<QPair<int, int>, int> lines;
    for (int i = 0; i < m_profile.select.size(); ++i) {
        const SelectRule &rule = m_profile.select.at(i);
        const TomlValue &place = *m_places.select.at(i);
        const QPair<int, int> event(rule.command, rule.state);
        if (!m_events.contains(event)) {
            warn(place.position,
                 QStringLiteral("nothing reports %1 with the state %2, so this never happens")
                     .arg(commandName(rule.command), stateName(rule.state)));
        }
        // Selected already, it is not selected anew.
        if (!(m_whileDown.value(event) - QSet<QString>{rule.identifier}).isEmpty()) {
            warn(place.positionOf("state"),
                 QStringLiteral("the key is still down when %1 is reported as %2, and to select %3 "
                                "loses its release; use the state 'KeyReleased'")
                     .arg(commandName(rule.command), stateName(rule.state),
                          quoted(rule.identifier)));
        }
        if (const int line = lines.value(event)) {
            warn(place.position,
                 QStringLiteral("this rule is never used: the one in line %1 comes first")
                     .arg(line));
        } else {
            lines.insert(event, place.position.line);
        }
        if (!identifiers.isEmpty() && !identifiers.contains(rule.identifier)) {
            warn(place.positionOf("identifier"),
                 QStringLiteral("no handler has the identifier %1%2")
                     .arg(quoted(rule.identifier), suggestion(rule.identifier, m_identifiers)));
        }
    }
}

} // namespace

void findRuleWarnings(const Profile &profile, const ProfilePlaces &places, Findings *findings)
{
    RuleWarnings(profile, places, findings).findAll();
}

} // namespace Vorn
