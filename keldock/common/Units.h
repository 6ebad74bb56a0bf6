#pragma once

#include <QRect>
#include <QString>
#include <QtGlobal>

/// Amounts as a person reads them.
namespace Units
{

/// Minutes and seconds, with hours where there are any: "0:07", "1:02:03".
QString clock(qint64 milliseconds);

/// Seconds with two decimals: "6.02 s".
QString seconds(qint64 milliseconds);

/// "812 bytes", "1.9 MB".
QString bytes(qint64 count);

/// As `--area` takes it: "100,80,1280x720".
QString area(const QRect &rect);

} // namespace Units
