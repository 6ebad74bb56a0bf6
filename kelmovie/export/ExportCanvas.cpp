#include "export/ExportCanvas.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QPainter>

namespace kel
{

namespace
{

/// A painter that scales looks at four pixels for each of its own. Where more of them fall together, letters would
/// lose strokes, so the whole picture is painted and its pixels are averaged.
bool isReducedMuch(const QSize &picture, const QSize &output)
{
    return output.width() * 2 < picture.width() || output.height() * 2 < picture.height();
}

QSize composedSize(const QSize &picture, const QSize &output)
{
    return isReducedMuch(picture, output) ? picture : output;
}

} // namespace

ExportCanvas::ExportCanvas(const QSize &picture, const QSize &output)
    : m_output(output)
    , m_scaleX(double(composedSize(picture, output).width()) / picture.width())
    , m_scaleY(double(composedSize(picture, output).height()) / picture.height())
    , m_composed(composedSize(picture, output), QImage::Format_ARGB32_Premultiplied)
{
    m_composed.fill(Qt::black); // in case the video does not cover it
}

bool ExportCanvas::isStale(const KelPlaybackTrackManager &manager) const
{
    return !m_isPainted || m_revision != manager.pictureRevision();
}

const QImage &ExportCanvas::paint(KelPlaybackTrackManager &manager)
{
    m_isPainted = true;
    m_revision = manager.pictureRevision();
    if (!manager.isPictureCovered())
        m_composed.fill(Qt::black); // or what moves would leave a trail
    QPainter painter(&m_composed);
    if (m_scaleX != 1.0 || m_scaleY != 1.0) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.scale(m_scaleX, m_scaleY);
    }
    manager.paint(&painter);
    painter.end();
    if (m_composed.size() == m_output)
        return m_composed;
    m_reduced = m_composed.scaled(m_output, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return m_reduced;
}

} // namespace kel
