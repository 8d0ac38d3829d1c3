#ifndef VORN_PROFILE_PROFILEPLACES_H
#define VORN_PROFILE_PROFILEPLACES_H

#include "TextPosition.h"
#include "TomlValue.h"

#include <QVector>

namespace Vorn {

/// Where a key, a chord or a switch is registered.
struct EntryPlace
{
    const TomlValue *value = nullptr; ///< its table, or its command
    TextPosition code; ///< of the code or the pair
};

/// Where the parts of a handler are in the file; the lists are parallel to those of HandlerProfile.
struct HandlerPlaces
{
    const TomlValue *handler = nullptr;
    QVector<TextPosition> identifiers; ///< of the handler itself for one without identifiers
    QVector<EntryPlace> keys;
    QVector<EntryPlace> chords;
    QVector<EntryPlace> switches;
};

/// Where the parts of a device entry are, parallel to DeviceProfile.
struct DevicePlaces
{
    const TomlValue *device = nullptr;
    QVector<HandlerPlaces> handlers;
};

/// Where the parts of a profile are, parallel to Profile. Valid as long as the document is.
struct ProfilePlaces
{
    const TomlValue *root = nullptr;
    QVector<const TomlValue *> select;
    QVector<DevicePlaces> devices;
};

} // namespace Vorn

#endif
