#ifndef PROFILEOPTIONS_H
#define PROFILEOPTIONS_H

#include <QString>

struct ProfileOptions
{
    QString config; ///< log4cplus properties; empty: warnings go to stderr
    QString profile; ///< empty: the key map that is compiled in
    int durationMs = 0; ///< 0: until a signal arrives
    bool timestamps = false;
};

/// Reads the command line. Exits on --help, --version and errors.
ProfileOptions parseProfileOptions();

/// Prints a line on stderr, behind the program's name.
void complain(const QString &message);

#endif
