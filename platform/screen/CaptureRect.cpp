#include "screen/CaptureRect.h"

namespace kel
{

QString captureRectError(const QRect &rect, int maxSide)
{
    if (rect.isEmpty())
        return QStringLiteral("The screen cannot be captured: the rectangle is empty.");
    if (rect.width() > maxSide || rect.height() > maxSide)
        return QStringLiteral("The screen cannot be captured: the rectangle (%1 x %2) is larger than any screen.")
            .arg(rect.width())
            .arg(rect.height());
    return {};
}

} // namespace kel
