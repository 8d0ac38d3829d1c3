#ifndef VORN_WORKBENCH_EXPLAINER_H
#define VORN_WORKBENCH_EXPLAINER_H

#include "Session.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <optional>

namespace Vorn::Workbench {

/// What became of a record, or of a key that is held long, as a whole.
struct Explanation
{
    qint64 time = 0; ///< of the record or long press, µs of the session
    QString device;
    QString deviceName; ///< the kernel's; empty if unknown
    int type = 0;
    int code = 0;
    int value = 0;
    /// None for a long press, and in a session that does not say it.
    std::optional<RecordOutcome::What> outcome;
    QStringList events; ///< what was published, "StartPlay KeyPressed"
    /// Why nothing was published, or when it was in the end; for people.
    QString reason;

    /// Whether anything was published, at once or later.
    bool isAnswered = false;
    /// False for an event of which the session does not say what caused it.
    bool hasKey = true;
};

/// One line of JSON, with its line end.
QByteArray toJsonLine(const Explanation &explanation);

/// Explains the records of a session: what was published, and why nothing was.
///
/// Entries are added in their order, and explanations are passed on in the order of the records. A
/// key that is held back is explained when it is known what came of it.
class Explainer
{
public:
    using Sink = std::function<void(const Explanation &)>;

    /// What becomes of events whose cause the session does not say
    enum class LooseEvents { Skipped, Explained };

    explicit Explainer(Sink sink, LooseEvents looseEvents = LooseEvents::Skipped);

    void add(const SessionEntry &entry);
    /// Passes on what is left.
    void finish();

    /// Whether there was a record and none had an outcome: an older program did not write them.
    bool lacksOutcomes() const { return m_records > 0 && m_outcomes == 0; }

private:
    struct Pending
    {
        Explanation explanation;
        bool isComplete = false;
    };

    void take(const DeviceChange &change);
    void take(const RecordRead &record);
    void take(const RecordOutcome &outcome);
    void take(const DetectorStep &step);
    void take(const EventPublished &event);
    template <typename Other>
    void take(const Other &)
    { }

    /// The press of a key that is held back; null if there is none.
    Pending *heldPress(const QString &device, int code);
    void complete(Pending *pending, const QString &reason, bool isAnswered) const;
    void addLoose(const EventPublished &event);
    void passOn();

    const Sink m_sink;
    const LooseEvents m_looseEvents;
    std::deque<Pending> m_pending;
    QHash<QString, QString> m_names;
    qint64 m_time = 0;
    int m_records = 0;
    int m_outcomes = 0;
};

} // namespace Vorn::Workbench

#endif
