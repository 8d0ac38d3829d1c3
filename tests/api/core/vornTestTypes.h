#ifndef VORNTESTTYPES_H
#define VORNTESTTYPES_H

#include <QMetaType>
#include <QObject>

#include <vector>

/// Not defined where the signals are compiled: Qt 6 registers what it knows the size of.
struct Unregistered;

struct Unmentioned
{
    int number;
};

struct RegisteredByName
{
    int number;
};

struct Declared
{
    int number;
};
Q_DECLARE_METATYPE(Declared)

class Sender : public QObject
{
    Q_OBJECT

public:
    void noSignal(int) { }

Q_SIGNALS:
    void nothing();
    void number(int);
    void numbers(int, int, int);
    void unregistered(const Unregistered &);
    void numberAndUnregistered(int, const Unregistered &);
    void unmentioned(Unmentioned);
    void registeredByName(RegisteredByName);
    void declared(Declared);
    void pointer(Unmentioned *);
};

class Receiver : public QObject
{
    Q_OBJECT

public:
    std::vector<int> numbers;

public Q_SLOTS:
    void onNumber(int number) { numbers.push_back(number); }
    void onUnregistered(const Unregistered &value);
    void onRegisteredByName(RegisteredByName value) { numbers.push_back(value.number); }
    void onDeclared(Declared value) { numbers.push_back(value.number); }
    void onPointer(Unmentioned *value) { numbers.push_back(value->number); }
};

#endif
