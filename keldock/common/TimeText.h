#pragma once

#include <QString>

/// Times and speeds as a person reads them.
namespace TimeText
{

/// Minutes and seconds with a tenth, hours where there are any: "0:07.3", "1:02:03.0".
QString precise(int ms);

/// A speed: "1.5×".
QString factor(double speed);

} // namespace TimeText
