#include "LogDetectors.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

/// Without descriptors each selection may leave one behind.
constexpr int maxDetectors = 200;

} // namespace

bool leadsTo(const LogDetector &detector, const Said::KeysStored &stored, int code)
{
    QVector<int> before = detector.codes();
    QVector<int> after;
    for (const Said::KeysStored::Key &key : stored.keys)
        after += key.code;
    before.removeAll(code);
    after.removeAll(code);
    return before == after;
}

int LogDetector::indexOf(int code) const
{
    for (int i = 0; i < keys.size(); ++i) {
        if (keys[i].code == code)
            return i;
    }
    return -1;
}

QVector<int> LogDetector::codes() const
{
    QVector<int> codes;
    for (const Key &key : keys)
        codes += key.code;
    return codes;
}

QVector<int> LogDetector::codesDown() const
{
    QVector<int> codes;
    for (const Key &key : keys) {
        if (key.value != 0)
            codes += key.code;
    }
    return codes;
}

// In a chord the first key is timed until both are up.
QVector<int> LogDetector::codesTimed() const
{
    QVector<int> codes = this->codes();
    for (const int code : leftTimed) {
        if (!codes.contains(code))
            codes += code;
    }
    return codes;
}

bool mayBeSame(const LogOrigin &one, const LogOrigin &other)
{
    if (one.isSame(other))
        return true;
    const LogDevicePtr device = one.device();
    const LogDevicePtr otherDevice = other.device();
    if (device && otherDevice)
        return device->path == otherDevice->path;
    if (one.isKnown() && other.isKnown())
        return one.text() == other.text();
    // A descriptor is one device, and two are two, or the two readers of one.
    return !one.descriptor() || !other.descriptor();
}

LogDetectorPtr LogDetectors::added(const LogOriginPtr &origin, const QString &identifier)
{
    forgetIdle();
    if (m_detectors.size() >= maxDetectors)
        m_detectors.removeFirst();
    m_detectors += std::make_shared<LogDetector>();
    m_detectors.last()->origin = origin;
    m_detectors.last()->identifier = identifier;
    return m_detectors.last();
}

LogDetectorPtr LogDetectors::forKeys(const LogOriginPtr &origin, bool known,
                                     const QString &identifier, const Said::KeysStored &stored,
                                     int code)
{
    LogDetectorPtr own;
    // One handler may serve several identifiers, so the keys count before the identifier.
    for (const bool anyIdentifier : {false, true}) {
        for (const LogDetectorPtr &detector : qAsConst(m_detectors)) {
            // Without keys any would fit.
            if (!mayBeSame(*detector->origin, *origin) || (!known && detector->keys.isEmpty()))
                continue;
            if (!anyIdentifier && detector->identifier != identifier)
                continue;
            // One without keys would fit anything.
            if (anyIdentifier && detector->keys.isEmpty())
                continue;
            if (leadsTo(*detector, stored, code)) {
                detector->identifier = identifier;
                return detector;
            }
            if (!anyIdentifier && !own)
                own = detector;
        }
    }
    return known && own ? own : added(origin, identifier);
}

LogDetectorPtr LogDetectors::forThirdKey(const LogOriginPtr &origin,
                                         const QString &identifier) const
{
    LogDetectorPtr found;
    for (const LogDetectorPtr &detector : m_detectors) {
        if (!detector->isChord || !mayBeSame(*detector->origin, *origin))
            continue;
        if (!found || detector->identifier == identifier)
            found = detector;
    }
    return found;
}

LogDetectorPtr LogDetectors::forRelease(const LogOriginPtr &origin, int code) const
{
    for (const LogDetectorPtr &detector : m_detectors) {
        const bool isConcerned = detector->forgotten.contains(code) || detector->indexOf(code) >= 0;
        if (isConcerned && mayBeSame(*detector->origin, *origin))
            return detector;
    }
    return nullptr;
}

void LogDetectors::learn(const LogDetector &detector, int code, InputEvent::Command command)
{
    m_commands.insert({detector.origin->text() + QLatin1Char('\n') + detector.identifier, code},
                      command);
}

std::optional<InputEvent::Command> LogDetectors::commandOf(const LogDetector &detector,
                                                           int code) const
{
    const auto found = m_commands.constFind(
        {detector.origin->text() + QLatin1Char('\n') + detector.identifier, code});
    return found == m_commands.constEnd() ? std::nullopt : std::make_optional(*found);
}

void LogDetectors::forgetIdle()
{
    m_detectors.erase(
        std::remove_if(m_detectors.begin(), m_detectors.end(),
                       [](const LogDetectorPtr &detector) { return detector->isIdle(); }),
        m_detectors.end());
}

void LogDetectors::forget(const std::function<bool(const LogOrigin &)> &isGone)
{
    m_detectors.erase(
        std::remove_if(m_detectors.begin(), m_detectors.end(),
                       [&isGone](const auto &detector) { return isGone(*detector->origin); }),
        m_detectors.end());
}

} // namespace Vorn::Workbench
