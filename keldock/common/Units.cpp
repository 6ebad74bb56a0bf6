#include "common/Units.h"

#include <QLocale>

QString Units::clock(qint64 milliseconds)
{
    const qint64 total = (milliseconds + 500) / 1000;
    const qint64 hours = total / 3600;
    const qint64 minutes = total / 60 % 60;
    const QString rest = QStringLiteral("%1").arg(total % 60, 2, 10, QLatin1Char('0'));
    if (hours == 0)
        return QStringLiteral("%1:%2").arg(minutes).arg(rest);
    return QStringLiteral("%1:%2:%3").arg(hours).arg(minutes, 2, 10, QLatin1Char('0')).arg(rest);
}

QString Units::seconds(qint64 milliseconds)
{
    return QString::number(static_cast<double>(milliseconds) / 1000.0, 'f', 2) + QStringLiteral(" s");
}

QString Units::bytes(qint64 count)
{
    return QLocale::c().formattedDataSize(count, 1, QLocale::DataSizeSIFormat);
}

QString Units::area(const QRect &rect)
{
    return QStringLiteral("%1,%2,%3x%4").arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}
