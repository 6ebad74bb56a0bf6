#pragma once

#include <QImage>
#include <QSize>

class KelPlaybackTrackManager;
struct KelExportRequest;

namespace kel
{

/// Composes the frames of an export: what the manager paints, scaled to the size of the output.
class ExportCanvas
{
public:
    /// `frame` is the size that the manager paints, `output` that of the result.
    ExportCanvas(const QSize &frame, const QSize &output);

    /// Size in pixels of the output that `request` asks for.
    static QSize outputSize(const KelPlaybackTrackManager &manager, const KelExportRequest &request);

    /// False if there was not enough memory.
    bool isValid() const { return !m_composed.isNull(); }

    /// Whether paint() would give another result than the last time.
    bool isStale(const KelPlaybackTrackManager &manager) const;
    /// The manager's current frame. Valid until the next call.
    const QImage &paint(KelPlaybackTrackManager &manager);

private:
    const QSize m_output;
    const double m_scaleX;
    const double m_scaleY;
    QImage m_composed;
    QImage m_reduced;
    bool m_isPainted = false;
    quint64 m_revision = 0; // of the manager's frame in m_composed
};

} // namespace kel
