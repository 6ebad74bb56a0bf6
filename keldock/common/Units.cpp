#include "common/Units.h"

#include "text/ClockText.h"

using namespace kel;

QString Units::clock(qint64 milliseconds)
{
    return ClockText::hoursMinutesSeconds((milliseconds + 500) / 1000, 1);
}

QString Units::preciseClock(int milliseconds)
{
    const qint64 tenths = (qint64(milliseconds) + 50) / 100;
    return QStringLiteral("%1.%2").arg(ClockText::hoursMinutesSeconds(tenths / 10, 1)).arg(tenths % 10);
}

QString Units::seconds(qint64 milliseconds)
{
    return QString::number(static_cast<double>(milliseconds) / 1000.0, 'f', 2) + QLatin1String(" s");
}

QString Units::bytes(qint64 count, const QLocale &locale)
{
    return locale.formattedDataSize(count, 1, QLocale::DataSizeSIFormat);
}

QString Units::speed(double factor)
{
    return QString::number(factor, 'g', 3) + QChar(0x00d7);
}

QString Units::area(const QRect &rect)
{
    return QStringLiteral("%1,%2,%3x%4").arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}
