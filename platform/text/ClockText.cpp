#include "text/ClockText.h"

namespace kel
{

namespace
{

constexpr int kSecondsPerMinute = 60;
constexpr int kSecondsPerHour = 3600;

QString padded(qint64 number, int digits)
{
    return QStringLiteral("%1").arg(number, digits, 10, QLatin1Char('0'));
}

} // namespace

QString ClockText::minutesSeconds(qint64 seconds, int digits)
{
    return padded(seconds / kSecondsPerMinute, digits) + QLatin1Char(':') + padded(seconds % kSecondsPerMinute, 2);
}

QString ClockText::hoursMinutesSeconds(qint64 seconds, int digits)
{
    if (seconds < kSecondsPerHour)
        return minutesSeconds(seconds, digits);
    return padded(seconds / kSecondsPerHour, digits) + QLatin1Char(':') + minutesSeconds(seconds % kSecondsPerHour);
}

} // namespace kel
