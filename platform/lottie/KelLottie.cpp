#include "lottie/KelLottie.h"

#include "logging/PlatformLog.h"
#include "lottie/LottieFile.h"
#include "lottie/TransformedImage.h"

#include <QDebug>
#include <QPainter>

#include <rlottie.h>

#include <cmath>

using namespace kel;

namespace
{

constexpr int kMaxPixels = 4096; // per side; larger frames are scaled up
const char *const kAccentKeyPath = "**.accent";

/// Frames rotated by other than right angles are rendered at this multiple of their size, so that their edges stay
/// smooth and sharp.
constexpr double kOversampling = 2;

/// The rotation and mirroring of a transform that maps the axes onto those of the device.
QTransform rotationOf(const QTransform &transform)
{
    const auto sign = [](double value) { return qFuzzyIsNull(value) ? 0.0 : value > 0 ? 1.0 : -1.0; };
    return QTransform(sign(transform.m11()), sign(transform.m12()), sign(transform.m21()), sign(transform.m22()), 0, 0);
}

bool isAxisAligned(const QTransform &transform)
{
    return transform.isAffine() && ((qFuzzyIsNull(transform.m12()) && qFuzzyIsNull(transform.m21())) ||
                                    (qFuzzyIsNull(transform.m11()) && qFuzzyIsNull(transform.m22())));
}

/// The area of the device in its pixels, or slightly more: the viewport is in pixels for images but in logical pixels
/// for widgets.
QRectF visibleArea(const QPainter &painter)
{
    const QTransform toPixels = painter.combinedTransform().inverted() * painter.deviceTransform();
    const QSizeF size = QSizeF(painter.viewport().size()) * painter.device()->devicePixelRatioF();
    return toPixels.mapRect(QRectF(painter.viewport().topLeft(), size));
}

} // namespace

KelLottie::KelLottie(const QString &resourcePath)
{
    const LottieFile file(resourcePath, kMaxFileSize);
    QString error = file.errorString();
    if (error.isEmpty()) {
        // Without the library's cache: objects that share a model would share its colors.
        m_animation = rlottie::Animation::loadFromData(file.data().toStdString(), std::string(), std::string(), false);
        if (!m_animation || m_animation->totalFrame() == 0)
            error = QStringLiteral("not a Lottie animation");
    }
    if (!error.isEmpty()) {
        m_animation.reset();
        qCWarning(logLottie, "[KelLottie] cannot use animation %s: %s", qUtf8Printable(resourcePath),
                  qUtf8Printable(error));
        return;
    }
    m_frameRate = m_animation->frameRate();
    m_totalFrame = m_animation->totalFrame();
}

KelLottie::~KelLottie() = default;

void KelLottie::setColor(const QColor &color)
{
    if (!m_animation || !color.isValid() || color == m_color)
        return;
    m_color = color;
    m_image = QImage();
    const rlottie::Color value(float(color.redF()), float(color.greenF()), float(color.blueF()));
    m_animation->setValue<rlottie::Property::FillColor>(kAccentKeyPath, value);
    m_animation->setValue<rlottie::Property::StrokeColor>(kAccentKeyPath, value);
}

const QImage &KelLottie::render(quint64 frame, QSize size)
{
    if (m_image.size() == size && m_imageFrame == frame)
        return m_image;
    const auto width = std::size_t(size.width()), height = std::size_t(size.height());
    if (m_image.isNull()) // rlottie applies a new color only after rendering another size or frame
        m_animation->renderTree(frame, width + 1, height);
    if (m_image.size() != size)
        m_image = QImage(size, QImage::Format_ARGB32_Premultiplied);
    if (m_image.isNull())
        return m_image;
    m_image.fill(Qt::transparent);
    m_animation->renderSync(frame, rlottie::Surface(reinterpret_cast<std::uint32_t *>(m_image.bits()), width, height,
                                                    std::size_t(m_image.bytesPerLine())));
    m_imageFrame = frame;
    return m_image;
}

void KelLottie::paint(QPainter *painter, float frame, const QRectF &target, double angle)
{
    if (!painter || !painter->isActive() || !m_animation || target.isEmpty() || !std::isfinite(frame) ||
        !std::isfinite(angle))
        return;
    const QTransform toDevice = painter->deviceTransform();
    if (!toDevice.isInvertible())
        return;
    // Maps the target, centered at the origin, to device pixels.
    QTransform transform = QTransform::fromTranslate(target.center().x(), target.center().y());
    transform = QTransform().rotate(angle) * transform * toDevice;

    const bool axisAligned = isAxisAligned(transform);
    const double oversampling = axisAligned ? 1 : kOversampling;
    const double width = target.width() * std::hypot(toDevice.m11(), toDevice.m12()) * oversampling;
    const double height = target.height() * std::hypot(toDevice.m21(), toDevice.m22()) * oversampling;
    const QSize size(int(qBound(1.0, std::round(width), double(kMaxPixels))),
                     int(qBound(1.0, std::round(height), double(kMaxPixels))));
    const auto nearest = quint64(qBound(0.0, std::round(double(frame)), double(m_totalFrame - 1)));
    const QImage &image = render(nearest, size);

    painter->save();
    if (m_color.isValid())
        painter->setOpacity(painter->opacity() * m_color.alphaF());
    const QTransform fromDevice = toDevice.inverted() * painter->worldTransform();
    if (axisAligned && width < kMaxPixels && height < kMaxPixels) {
        const QTransform rotation = rotationOf(transform);
        const QRectF rotated = rotation.mapRect(QRectF(QPointF(), QSizeF(size)));
        const QPointF corner(std::round(transform.dx() - rotated.width() / 2),
                             std::round(transform.dy() - rotated.height() / 2));
        painter->setWorldTransform(
            rotation * QTransform::fromTranslate(corner.x() - rotated.x(), corner.y() - rotated.y()) * fromDevice);
        painter->drawImage(QPointF(), image);
    } else {
        transform = QTransform::fromTranslate(-size.width() / 2.0, -size.height() / 2.0) *
                    QTransform::fromScale(target.width() / size.width(), target.height() / size.height()) * transform;
        const QRect area = (transform.mapRect(QRectF(image.rect())) & visibleArea(*painter)).toAlignedRect();
        painter->setWorldTransform(fromDevice);
        painter->drawImage(area.topLeft(), transformedImage(image, transform, area));
    }
    painter->restore();
}
