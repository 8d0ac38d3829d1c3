#ifndef QTDIFFERENCES_H
#define QTDIFFERENCES_H

#include <QMetaType>

/// What the versions of Qt do differently, so that the tests can expect it. All of it is in here.
namespace QtDifferences {

/// Qt 6 registers a complete type wherever a signal has it, so a queued connection can copy it.
constexpr bool knowsCompleteTypes = QT_VERSION_MAJOR >= 6;

/// How an index out of range ends the process.
constexpr const char *indexAssertion = QT_VERSION_MAJOR >= 6
    ? "ASSERT failure in QList::at: \"index out of range\""
    : "ASSERT failure in QList<T>::operator\\[\\]: \"index out of range\"";

/// Allocations of an element of a QList: in Qt 5 each has its own.
constexpr int listElement = QT_VERSION_MAJOR >= 6 ? 0 : 1;

/// Allocations of an entry of a QHash that has had as many before: Qt 6 has a place for it.
constexpr int hashEntry = QT_VERSION_MAJOR >= 6 ? 0 : 1;

/// Allocations saved by a QList that was cleared while it was shared: Qt 6 gives it an array of the
/// size that it had.
constexpr int clearedList = QT_VERSION_MAJOR >= 6 ? 1 : 0;

inline bool isMetaType(const char *name)
{
#if QT_VERSION_MAJOR >= 6
    return QMetaType::fromName(name).isValid();
#else
    return QMetaType::type(name) != QMetaType::UnknownType;
#endif
}

inline const char *metaTypeName(int type)
{
#if QT_VERSION_MAJOR >= 6
    return QMetaType(type).name();
#else
    return QMetaType::typeName(type);
#endif
}

} // namespace QtDifferences

#endif
