#include "Observation.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <sstream>
#include <utility>

namespace Model {

bool Observation::operator==(const Observation &other) const
{
    return kind == other.kind
        && std::equal(std::begin(numbers), std::end(numbers), std::begin(other.numbers))
        && text == other.text;
}

std::ostream &operator<<(std::ostream &stream, const Observation &observation)
{
    const auto &numbers = observation.numbers;
    switch (observation.kind) {
    case Observation::Kind::Keys:
        return stream << (numbers[1] != 0 ? "synthetic" : "keys") << " of " << numbers[0];
    case Observation::Kind::Key:
        return stream << "    " << numbers[2] << "/" << numbers[0] << "=" << numbers[1] << " at "
                      << numbers[3];
    case Observation::Kind::LongPress:
        return stream << "long press " << numbers[0] << " #" << numbers[1];
    case Observation::Kind::Published:
        return stream << "published command " << numbers[0] << " state " << numbers[1] << " bus "
                      << numbers[2];
    case Observation::Kind::Line:
        return stream << "line " << numbers[0] << " " << observation.text;
    case Observation::Kind::Note:
        return stream << observation.text;
    }
    return stream;
}

std::string text(const Observations &observations)
{
    std::ostringstream stream;
    for (const Observation &observation : observations)
        stream << observation << '\n';
    return stream.str();
}

void Trace::onKeys(const std::vector<Record> &keys, bool fake)
{
    m_observations.push_back({Observation::Kind::Keys,
                              {static_cast<std::int64_t>(keys.size()), fake ? 1 : 0, 0, 0},
                              {}});
    for (const Record &key : keys) {
        m_observations.push_back(
            {Observation::Kind::Key, {key.code, key.value, key.type, key.msecs}, {}});
    }
}

void Trace::onLongPress(int code, int repeat)
{
    m_observations.push_back({Observation::Kind::LongPress, {code, repeat, 0, 0}, {}});
}

void Trace::onPublished(int command, int state, int bus)
{
    m_observations.push_back({Observation::Kind::Published, {command, state, bus, 0}, {}});
}

void Trace::onLine(const std::string &logger, int level, const std::string &line)
{
    m_observations.push_back({Observation::Kind::Line, {level, 0, 0, 0}, logger + ": " + line});
}

void Trace::note(const std::string &text)
{
    m_observations.push_back({Observation::Kind::Note, {0, 0, 0, 0}, text});
}

void Trace::sortTick()
{
    std::vector<std::pair<std::int64_t, Observations>> notifications(1);
    for (Observation &observation : m_observations) {
        const bool isLast = observation.kind == Observation::Kind::LongPress;
        const std::int64_t code = observation.numbers[0];
        notifications.back().second.push_back(std::move(observation));
        if (isLast) {
            notifications.back().first = code;
            notifications.emplace_back();
        }
    }
    const Observations rest = std::move(notifications.back().second);
    notifications.pop_back();
    std::sort(notifications.begin(), notifications.end(),
              [](const auto &left, const auto &right) { return left.first < right.first; });
    m_observations.clear();
    for (auto &notification : notifications)
        std::move(notification.second.begin(), notification.second.end(),
                  std::back_inserter(m_observations));
    m_observations.insert(m_observations.end(), rest.begin(), rest.end());
}

} // namespace Model
