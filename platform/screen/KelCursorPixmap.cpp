#include "screen/KelCursorPixmap.h"

#include "screen/KelCursorSource.h"
#include "screen/KelScreenManager.h"

#include <QGuiApplication>

std::shared_ptr<const KelCursorPixmap> KelCursorPixmap::GetCursor(const QRect &rect)
{
    const auto snapshot = std::make_shared<KelCursorPixmap>();
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return snapshot; // a console program has no pixmaps
    const std::shared_ptr<KelCursorSource> source = KelScreenManager::instance()->cursorSource(rect);
    if (source)
        *snapshot = source->read();
    snapshot->m_source = source;
    return snapshot;
}
