#ifndef VORN_BENCH_SLOT_H
#define VORN_BENCH_SLOT_H

#include <QMetaObject>
#include <QObject>

/// A private slot of an object, called through the meta-object as a queued signal calls it: by its
/// number, which costs next to nothing, where a call by name would cost more than some slots.
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

    /// @param argument where the slot's argument is, if it has one
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
