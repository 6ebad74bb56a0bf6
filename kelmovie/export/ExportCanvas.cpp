#include "export/ExportCanvas.h"

#include <KelMovie/KelExportRequest.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QPainter>

namespace kel
{

namespace
{

/// A scaling painter interpolates between four source pixels. Below half the size that would skip pixels, and thin
/// lines of text with them, so the frame is painted in full size and its pixels are averaged.
bool needsAveraging(const QSize &frame, const QSize &output)
{
    return output.width() * 2 < frame.width() || output.height() * 2 < frame.height();
}

QSize composedSize(const QSize &frame, const QSize &output)
{
    return needsAveraging(frame, output) ? frame : output;
}

} // namespace

ExportCanvas::ExportCanvas(const QSize &frame, const QSize &output)
    : m_output(output)
    , m_scaleX(double(composedSize(frame, output).width()) / frame.width())
    , m_scaleY(double(composedSize(frame, output).height()) / frame.height())
    , m_composed(composedSize(frame, output), QImage::Format_ARGB32_Premultiplied)
{
    m_composed.fill(Qt::black); // visible where the video does not cover the frame
}

QSize ExportCanvas::outputSize(const KelPlaybackTrackManager &manager, const KelExportRequest &request)
{
    return request.size.isEmpty() ? manager.frameSize() : request.size;
}

bool ExportCanvas::isStale(const KelPlaybackTrackManager &manager) const
{
    return !m_isPainted || m_revision != manager.frameRevision();
}

const QImage &ExportCanvas::paint(KelPlaybackTrackManager &manager)
{
    m_isPainted = true;
    m_revision = manager.frameRevision();
    if (!manager.isFrameCovered())
        m_composed.fill(Qt::black); // else moving overlays would leave a trail
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
