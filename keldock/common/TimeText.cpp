#include "common/TimeText.h"

QString TimeText::precise(int ms)
{
    const int tenths = (ms + 50) / 100;
    const int seconds = tenths / 10;
    const QString rest = QStringLiteral("%1.%2").arg(seconds % 60, 2, 10, QLatin1Char('0')).arg(tenths % 10);
    const int minutes = seconds / 60;
    if (minutes < 60)
        return QStringLiteral("%1:%2").arg(minutes).arg(rest);
    return QStringLiteral("%1:%2:%3").arg(minutes / 60).arg(minutes % 60, 2, 10, QLatin1Char('0')).arg(rest);
}

QString TimeText::factor(double speed)
{
    return QString::number(speed, 'g', 3) + QChar(0x00d7);
}
