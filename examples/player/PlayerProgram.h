#ifndef PLAYERPROGRAM_H
#define PLAYERPROGRAM_H

#include <QString>

#include <functional>
#include <initializer_list>

class QObject;

/// @file
/// What surrounds the input in both forms of the player: command line, logging, signals, output.

/// Exit status where something that the player needs cannot be had.
constexpr int exitFailed = 1;

struct PlayerOptions
{
    QString config;
    QString profile; ///< empty if none is given, or none can be
    int durationMs = 0; ///< 0: until a signal arrives
    bool timestamps = false;
};

enum class ProfileOption { IsUnknown, IsOffered };

/// Reads the command line. Exits on --help, --version and errors.
PlayerOptions parsePlayerOptions(ProfileOption profileOption);

/// Prints a line on stderr, behind the program's name.
void complain(const QString &message);

/// Sets up the library's logging from a properties file.
/// @return false, with a line on stderr, if the file cannot be read
bool configureLogging(const QString &path);

/// Calls @p handle from the event loop whenever one of the signals arrives.
/// @return false, with a line on stderr, if the system refuses
bool onSignals(std::initializer_list<int> numbers, QObject *context,
               const std::function<void(int signal)> &handle);

/// Prints each event on a line.
void printEvents(const QObject *context, bool timestamps);

/// Explains why nothing happens: no device is plugged in yet.
void reportWaiting();

/// Ends the program when its time is up.
void quitAfter(int durationMs);

#endif
