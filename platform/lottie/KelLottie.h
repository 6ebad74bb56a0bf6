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

/// A Lottie animation that can be painted frame by frame, sharp at every size.
///
/// An animation that cannot be used (missing, malformed, too large, with pictures in other files) is an object of
/// length 0 that paints nothing; one line in the log says why. An object belongs to one thread at a time.
class KelLottie
{
public:
    /// Largest file that is read, in bytes.
    static constexpr qint64 maxFileSize = 4 * 1024 * 1024;

    /// Reads the animation from a file or a Qt resource.
    explicit KelLottie(const QString &resourcePath);
    ~KelLottie();

    /// Animation frames a second; 0 for an object of length 0.
    double frameRate() const { return m_frameRate; }

    /// Length in animation frames.
    quint64 totalFrame() const { return m_totalFrame; }

    /// Gives a colour to all fills and strokes named "accent"; the rest of the animation keeps its own. Before the
    /// first call, accents are as they were drawn; an invalid colour changes nothing. The colour's alpha makes the
    /// whole animation translucent.
    void setColor(const QColor &color);

    /// Paints an animation frame (the nearest one; frames outside of the animation count as its first or last) into
    /// `target`, in the painter's coordinates, its aspect ratio kept; `angle` turns it about the centre of `target`,
    /// in degrees clockwise. It is rendered at the resolution of the painter's device; when it stands upright there,
    /// or is turned by right angles only, its pixels are the device's and `target` is moved to whole ones.
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
