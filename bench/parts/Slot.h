#ifndef VORN_BENCH_SLOT_H
#define VORN_BENCH_SLOT_H

#include <QMetaObject>
#include <QObject>

/// A private slot of an object, called by its index as a queued signal does. A call by name would
/// cost more than some of the slots.
class Slot
{
public:
    /// @param signature e.g. "update()"; fatal if there is no such slot
    Slot(QObject *object, const char *signature)
        : m_object(object)
        , m_index(object->metaObject()->indexOfSlot(signature))
    {
        if (m_index < 0)
            qFatal("%s has no slot %s", object->metaObject()->className(), signature);
    }

    /// @param argument points to the slot's argument, if it has one
    void operator()(void *argument = nullptr) const
    {
        void *arguments[] = {nullptr, argument};
        m_object->qt_metacall(QMetaObject::InvokeMetaMethod, m_index, arguments);
    }

private:
    QObject *m_object;
    int m_index;
};

#endif
