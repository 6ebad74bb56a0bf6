#pragma once

#include <QImage>
#include <QSize>

class KelPlaybackTrackManager;

namespace kel
{

/// The picture of an export: what the manager paints, in the size of the output.
class ExportCanvas
{
public:
    /// `picture` is the size that the manager paints.
    ExportCanvas(const QSize &picture, const QSize &output);

    /// There was memory for it.
    bool isValid() const { return !m_composed.isNull(); }

    /// Whether the manager's picture is another one than at the last paint().
    bool isStale(const KelPlaybackTrackManager &manager) const;
    const QImage &paint(KelPlaybackTrackManager &manager);

private:
    const QSize m_output;
    const double m_scaleX;
    const double m_scaleY;
    QImage m_composed;
    QImage m_reduced;
    bool m_isPainted = false;
    quint64 m_revision = 0; // of the manager's picture in m_composed
};

} // namespace kel
