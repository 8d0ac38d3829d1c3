#ifndef VORN_TESTS_BEHAVIOUR_H
#define VORN_TESTS_BEHAVIOUR_H

#include <QString>
#include <QStringList>

/// What a product does at three times of its life; nothing in most of them.
struct Behaviour
{
    const char *name;
    void (*beforeApplication)(); ///< before there is a QCoreApplication
    void (*beforeLoop)(const QString &argument); ///< with it, before its event loop runs
    void (*onEvent)(const QString &argument); ///< at the first event on the bus
};

/// @return null if there is none of this name
const Behaviour *behaviour(const QString &name);

QStringList behaviourNames();

#endif
