#include "recorder/ToolbarPlacement.h"

#include <algorithm>

namespace
{

constexpr int Gap = 12;

qint64 commonArea(const QRect &a, const QRect &b)
{
    const QRect common = a & b;
    return common.isEmpty() ? 0 : qint64(common.width()) * common.height();
}

/// As near to the wanted place as the screen allows; the toolbar fits on it.
QPoint onScreen(const QPoint &wanted, const QSize &toolbar, const QRect &screen)
{
    return {std::clamp(wanted.x(), screen.left(), std::max(screen.left(), screen.right() + 1 - toolbar.width())),
            std::clamp(wanted.y(), screen.top(), std::max(screen.top(), screen.bottom() + 1 - toolbar.height()))};
}

} // namespace

std::optional<QPoint> ToolbarPlacement::beside(const QRect &area, const QSize &toolbar, const QVector<QRect> &screens)
{
    QVector<QRect> byNearness = screens;
    std::stable_sort(byNearness.begin(), byNearness.end(),
                     [&](const QRect &a, const QRect &b) { return commonArea(a, area) > commonArea(b, area); });
    const QRect kept = area.adjusted(-Gap / 2, -Gap / 2, Gap / 2, Gap / 2); // the area with its frame
    const int centredX = area.left() + (area.width() - toolbar.width()) / 2;
    const int centredY = area.top() + (area.height() - toolbar.height()) / 2;
    for (const QRect &screen : qAsConst(byNearness)) {
        const QPoint places[] = {{centredX, area.bottom() + 1 + Gap},
                                 {centredX, area.top() - Gap - toolbar.height()},
                                 {area.right() + 1 + Gap, centredY},
                                 {area.left() - Gap - toolbar.width(), centredY},
                                 {screen.center().x() - toolbar.width() / 2, screen.bottom() - Gap - toolbar.height()}};
        for (const QPoint &place : places) {
            const QPoint shown = onScreen(place, toolbar, screen);
            if (!QRect(shown, toolbar).intersects(kept))
                return shown;
        }
    }
    return std::nullopt;
}
