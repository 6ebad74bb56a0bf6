#pragma once

#include <QString>

/// Durations as a clock shows them. `seconds` must not be negative. `digits` is the minimum number of digits of the
/// first number; the others have two.
namespace kel::ClockText
{

/// "01:05" for 65 seconds, "60:00" for an hour: the minutes go on past 59.
QString minutesSeconds(qint64 seconds, int digits = 2);

/// "01:05" for 65 seconds, "01:02:05" with hours.
QString hoursMinutesSeconds(qint64 seconds, int digits = 2);

} // namespace kel::ClockText
