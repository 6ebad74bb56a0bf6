#include "recorder/ToolbarPlacement.h"

#include <algorithm>

namespace
{

constexpr int kGap = 12;

qint64 overlap(const QRect &a, const QRect &b)
{
    const QRect common = a & b;
    return common.isEmpty() ? 0 : qint64(common.width()) * common.height();
}

/// The position closest to `target` at which the toolbar is entirely on the screen.
QPoint onScreen(const QPoint &target, const QSize &toolbar, const QRect &screen)
{
    return {std::clamp(target.x(), screen.left(), std::max(screen.left(), screen.right() + 1 - toolbar.width())),
            std::clamp(target.y(), screen.top(), std::max(screen.top(), screen.bottom() + 1 - toolbar.height()))};
}

} // namespace

std::optional<QPoint> ToolbarPlacement::beside(const QRect &area, const QSize &toolbar, const QVector<QRect> &screens)
{
    QVector<QRect> byOverlap = screens;
    std::stable_sort(byOverlap.begin(), byOverlap.end(),
                     [&](const QRect &a, const QRect &b) { return overlap(a, area) > overlap(b, area); });
    const QRect reserved = area.adjusted(-kGap / 2, -kGap / 2, kGap / 2, kGap / 2); // the area and its frame
    const int centeredX = area.left() + (area.width() - toolbar.width()) / 2;
    const int centeredY = area.top() + (area.height() - toolbar.height()) / 2;
    for (const QRect &screen : qAsConst(byOverlap)) {
        const QPoint places[] = {
            {centeredX, area.bottom() + 1 + kGap},
            {centeredX, area.top() - kGap - toolbar.height()},
            {area.right() + 1 + kGap, centeredY},
            {area.left() - kGap - toolbar.width(), centeredY},
            {screen.center().x() - toolbar.width() / 2, screen.bottom() - kGap - toolbar.height()}};
        for (const QPoint &place : places) {
            const QPoint shown = onScreen(place, toolbar, screen);
            if (!QRect(shown, toolbar).intersects(reserved))
                return shown;
        }
    }
    return std::nullopt;
}
