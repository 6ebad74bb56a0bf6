#pragma once

#include <QColor>
#include <QImage>
#include <QString>

#include <memory>

class QPainter;
class QRectF;
namespace rlottie
{
class Animation;
}

/// A Lottie animation that is painted frame by frame, sharp at every size.
///
/// An object whose animation cannot be used (missing, malformed, too large, with images in other files) has a length of
/// 0 and paints nothing; one log line gives the reason. An object may be used by one thread at a time.
class KelLottie
{
public:
    /// Maximum file size in bytes.
    static constexpr qint64 kMaxFileSize = 4 * 1024 * 1024;

    /// Reads the animation from a file or a Qt resource.
    explicit KelLottie(const QString &resourcePath);
    ~KelLottie();

    /// Animation frames per second; 0 when the animation cannot be used.
    double frameRate() const { return m_frameRate; }

    /// Length in animation frames.
    quint64 totalFrame() const { return m_totalFrame; }

    /// Sets the color of all fills and strokes named "accent"; the others keep theirs. Before the first call, accents
    /// have the color of the file; an invalid color has no effect. The alpha of the color applies to the whole
    /// animation.
    void setColor(const QColor &color);

    /// Paints the nearest animation frame, clamped to the first and the last, into `target` in painter coordinates,
    /// with its aspect ratio kept. `angle` rotates it about the center of `target`, in degrees clockwise. The frame is
    /// rendered at the resolution of the device; when it is unrotated there or rotated by right angles only, `target`
    /// is moved to whole pixels and the frame is not resampled.
    void paint(QPainter *painter, float frame, const QRectF &target, double angle);

private:
    Q_DISABLE_COPY(KelLottie)

    const QImage &render(quint64 frame, QSize size);

    double m_frameRate = 0;
    quint64 m_totalFrame = 0;
    std::unique_ptr<rlottie::Animation> m_animation;
    QColor m_color;
    QImage m_image; // the frame rendered last
    quint64 m_imageFrame = 0;
};
