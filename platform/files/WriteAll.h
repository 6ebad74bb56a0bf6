#pragma once

#include <QByteArray>

class QIODevice;

namespace kel
{

/// Writes all of `bytes` to an unbuffered device. False when that fails; the device then has the error. Writes the rest
/// after a partial write, because a disk that fills up reports its error only with the next write. Any thread.
bool writeAll(QIODevice &device, const QByteArray &bytes);

} // namespace kel
