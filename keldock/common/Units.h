#pragma once

#include <QLocale>
#include <QRect>
#include <QString>
#include <QtGlobal>

/// Quantities formatted for display.
namespace Units
{

/// Minutes and seconds, hours if there are any: "0:07", "1:02:03". Rounded to seconds.
QString clock(qint64 milliseconds);

/// Like clock(), with tenths of a second: "0:07.3", "1:02:03.0".
QString preciseClock(int milliseconds);

/// Seconds with two decimals: "6.02 s".
QString seconds(qint64 milliseconds);

/// "812 bytes", "1.9 MB".
QString bytes(qint64 count, const QLocale &locale = QLocale::c());

/// A speed factor: "1.5×".
QString speed(double factor);

/// In the form that `--area` accepts: "100,80,1280x720".
QString area(const QRect &rect);

} // namespace Units
