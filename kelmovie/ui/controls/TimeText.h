#pragma once

#include <QString>

namespace kel::TimeText
{

/// "01:05" for 65 seconds; the minutes go on past 59.
inline QString minutesSeconds(qint64 seconds, int minuteDigits = 2)
{
    return QStringLiteral("%1:%2")
        .arg(seconds / 60, minuteDigits, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace kel::TimeText
