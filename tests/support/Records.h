#ifndef RECORDS_H
#define RECORDS_H

#include <QList>

#include <linux/input.h>

#include <string>

/// A record stamped @p msecs milliseconds after the epoch.
input_event record(int type, int code, int value, qint64 msecs = 0);
input_event keyRecord(int code, int value, qint64 msecs = 0);
input_event switchRecord(int code, int value, qint64 msecs = 0);

/// "type/code=value@msecs" for each record, separated by spaces.
std::string describe(const QList<input_event> &records);

#endif
