#ifndef VORN_WORKBENCH_BITMAPS_H
#define VORN_WORKBENCH_BITMAPS_H

#include <QByteArray>
#include <QVector>

#include <linux/input.h>

namespace Vorn::Workbench {

/// @file
/// Bitmaps in the kernel's order: code 0 is the lowest bit of the first byte.

bool testBit(const QByteArray &bits, int bit);
void setBit(QByteArray *bits, int bit);
QVector<int> setBits(const QByteArray &bits);
/// The bitmap without trailing zero bytes.
QByteArray withoutTrailingZeros(QByteArray bits);
/// The bitmap cut or filled up to @p size bytes.
QByteArray padded(const QByteArray &bits, int size);

/// Number of event types.
constexpr int typeCount = EV_CNT;

/// Size in bytes of the kernel's bitmap of properties, with 64-bit words.
constexpr int maxPropertyBytes = 8;

/// How many codes a type has; 0 for types without codes of their own.
int codeCount(int type);

/// Size in bytes of the kernel's bitmap of a type's codes, with 64-bit words.
int bitmapSize(int type);

} // namespace Vorn::Workbench

#endif
