#ifndef VORNTESTTYPES_H
#define VORNTESTTYPES_H

#include <QMetaType>
#include <QObject>

#include <vector>

struct Unregistered
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
    void unregistered(Unregistered);
    void numberAndUnregistered(int, Unregistered);
    void registeredByName(RegisteredByName);
    void declared(Declared);
    void pointer(Unregistered *);
};

class Receiver : public QObject
{
    Q_OBJECT

public:
    std::vector<int> numbers;

public Q_SLOTS:
    void onNumber(int number) { numbers.push_back(number); }
    void onUnregistered(Unregistered value) { numbers.push_back(value.number); }
    void onRegisteredByName(RegisteredByName value) { numbers.push_back(value.number); }
    void onDeclared(Declared value) { numbers.push_back(value.number); }
    void onPointer(Unregistered *value) { numbers.push_back(value->number); }
};

#endif
