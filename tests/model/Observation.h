#ifndef MODEL_OBSERVATION_H
#define MODEL_OBSERVATION_H

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

/// What the library should do, in plain C++, apart from the library.
namespace Model {

/// A record of a device.
struct Record
{
    int type = 0;
    int code = 0;
    int value = 0;
    std::int64_t msecs = 0; ///< since the epoch
};

/// Something that can be seen from outside.
struct Observation
{
    enum class Kind {
        Keys, ///< the chord detector's signal: number of records, synthetic
        Key, ///< a record of it: code, value, type, time
        LongPress, ///< the long-press detector's signal: code, count
        Published, ///< on the bus: command, state, bus
        Line, ///< of the log: level; logger and text
        Note, ///< of a test: text
    };

    Kind kind;
    std::int64_t numbers[4] = {0, 0, 0, 0};
    std::string text;

    bool operator==(const Observation &other) const;
};

std::ostream &operator<<(std::ostream &stream, const Observation &observation);

using Observations = std::vector<Observation>;

/// One observation a line.
std::string text(const Observations &observations);

/// Is told what can be seen from outside, as it happens.
class Observer
{
public:
    virtual ~Observer() = default;

    virtual void onKeys(const std::vector<Record> &keys, bool fake) = 0;
    virtual void onLongPress(int code, int repeat) = 0;
    virtual void onPublished(int command, int state, int bus) = 0;
    /// Whether lines are wanted, which are dear.
    virtual bool isLogging() const = 0;
    virtual void onLine(const std::string &logger, int level, const std::string &line) = 0;
};

/// Keeps what it is told.
class Trace : public Observer
{
public:
    explicit Trace(bool isLogging)
        : m_isLogging(isLogging)
    { }

    void onKeys(const std::vector<Record> &keys, bool fake) override;
    void onLongPress(int code, int repeat) override;
    void onPublished(int command, int state, int bus) override;
    bool isLogging() const override { return m_isLogging; }
    void onLine(const std::string &logger, int level, const std::string &line) override;
    void note(const std::string &text);

    /// Notifications of one tick may come in any order: sorts them by key, each with what it
    /// caused.
    void sortTick();

    const Observations &observations() const { return m_observations; }
    void clear() { m_observations.clear(); }

private:
    bool m_isLogging;
    Observations m_observations;
};

} // namespace Model

#endif
