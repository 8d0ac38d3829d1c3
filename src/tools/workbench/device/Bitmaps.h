#ifndef VORN_WORKBENCH_BITMAPS_H
#define VORN_WORKBENCH_BITMAPS_H

#include <QByteArray>
#include <QVector>

#include <linux/input.h>

namespace Vorn::Workbench {

/// @file
/// Bitmaps as the kernel gives them: the lowest code is the lowest bit of the first byte.

bool testBit(const QByteArray &bits, int bit);
void setBit(QByteArray *bits, int bit);
QVector<int> setBits(const QByteArray &bits);
/// The bitmap without zero bytes at its end.
QByteArray withoutTrailingZeros(QByteArray bits);
/// The bitmap in exactly @p size bytes.
QByteArray padded(const QByteArray &bits, int size);

/// Number of event types.
constexpr int typeCount = EV_CNT;

/// Bytes that the kernel has for the properties of a device, where a word has 64 bits.
constexpr int maxPropertyBytes = 8;

/// How many codes a type has; 0 for types without codes of their own.
int codeCount(int type);

/// Bytes that the kernel has for the codes of a type, where a word has 64 bits.
int bitmapSize(int type);

} // namespace Vorn::Workbench

#endif
