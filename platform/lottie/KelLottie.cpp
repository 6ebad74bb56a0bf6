#include "lottie/KelLottie.h"

#include "logging/PlatformLog.h"
#include "lottie/LottieFile.h"
#include "lottie/TurnedPicture.h"

#include <QDebug>
#include <QPainter>

#include <rlottie.h>

#include <cmath>

using namespace kel;

namespace
{

constexpr int maxPixels = 4096; // of a side; what is larger on the device is scaled up
const char *const accents = "**.accent";

/// A picture that is turned by an odd angle is rendered this much larger, so that its edges stay smooth and sharp.
constexpr double oversampling = 2;

/// The turn alone of a transform whose axes fall on those of the device.
QTransform turnOf(const QTransform &transform)
{
    const auto sign = [](double value) { return qFuzzyIsNull(value) ? 0.0 : value > 0 ? 1.0 : -1.0; };
    return QTransform(sign(transform.m11()), sign(transform.m12()), sign(transform.m21()), sign(transform.m22()), 0, 0);
}

bool isUpright(const QTransform &transform)
{
    return transform.isAffine() && ((qFuzzyIsNull(transform.m12()) && qFuzzyIsNull(transform.m21())) ||
                                    (qFuzzyIsNull(transform.m11()) && qFuzzyIsNull(transform.m22())));
}

/// Of the device, in its pixels, or a little more: pictures count their width in pixels, widgets in logical ones.
QRectF visibleArea(const QPainter &painter)
{
    const QTransform toPixels = painter.combinedTransform().inverted() * painter.deviceTransform();
    const QSizeF size = QSizeF(painter.viewport().size()) * painter.device()->devicePixelRatioF();
    return toPixels.mapRect(QRectF(painter.viewport().topLeft(), size));
}

} // namespace

KelLottie::KelLottie(const QString &resourcePath)
{
    const LottieFile file(resourcePath, maxFileSize);
    QString error = file.errorString();
    if (error.isEmpty()) {
        // Without the library's cache: objects that share a model would share colours.
        m_animation = rlottie::Animation::loadFromData(file.data().toStdString(), std::string(), std::string(), false);
        if (!m_animation || m_animation->totalFrame() == 0)
            error = "not a Lottie animation";
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
    m_animation->setValue<rlottie::Property::FillColor>(accents, value);
    m_animation->setValue<rlottie::Property::StrokeColor>(accents, value);
}

const QImage &KelLottie::render(quint64 frame, QSize size)
{
    if (m_image.size() == size && m_imageFrame == frame)
        return m_image;
    const auto width = std::size_t(size.width()), height = std::size_t(size.height());
    if (m_image.isNull()) // a new colour shows only when another size or frame was rendered in between
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
    // From the target about its own centre to the pixels of the device.
    QTransform place = QTransform::fromTranslate(target.center().x(), target.center().y());
    place = QTransform().rotate(angle) * place * toDevice;

    const bool upright = isUpright(place);
    const double detail = upright ? 1 : oversampling;
    const double width = target.width() * std::hypot(toDevice.m11(), toDevice.m12()) * detail;
    const double height = target.height() * std::hypot(toDevice.m21(), toDevice.m22()) * detail;
    const QSize size(int(qBound(1.0, std::round(width), double(maxPixels))),
                     int(qBound(1.0, std::round(height), double(maxPixels))));
    const auto nearest = quint64(qBound(0.0, std::round(double(frame)), double(m_totalFrame - 1)));
    const QImage &image = render(nearest, size);

    painter->save();
    if (m_color.isValid())
        painter->setOpacity(painter->opacity() * m_color.alphaF());
    const QTransform fromDevice = toDevice.inverted() * painter->worldTransform();
    if (upright && width < maxPixels && height < maxPixels) {
        const QTransform turn = turnOf(place);
        const QRectF turned = turn.mapRect(QRectF(QPointF(), QSizeF(size)));
        const QPointF corner(std::round(place.dx() - turned.width() / 2), std::round(place.dy() - turned.height() / 2));
        painter->setWorldTransform(turn * QTransform::fromTranslate(corner.x() - turned.x(), corner.y() - turned.y()) *
                                   fromDevice);
        painter->drawImage(QPointF(), image);
    } else {
        place = QTransform::fromTranslate(-size.width() / 2.0, -size.height() / 2.0) *
                QTransform::fromScale(target.width() / size.width(), target.height() / size.height()) * place;
        const QRect area = (place.mapRect(QRectF(image.rect())) & visibleArea(*painter)).toAlignedRect();
        painter->setWorldTransform(fromDevice);
        painter->drawImage(area.topLeft(), turnedPicture(image, place, area));
    }
    painter->restore();
}
