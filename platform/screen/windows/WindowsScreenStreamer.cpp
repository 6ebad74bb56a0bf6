#include "screen/windows/WindowsScreenStreamer.h"

#include "logging/PlatformLog.h"
#include "screen/OpaqueCopy.h"

#include <QDebug>

#include <utility>

namespace kel
{

namespace
{

constexpr QImage::Format kFrameFormat = QImage::Format_ARGB32_Premultiplied;

} // namespace

WindowsScreenStreamer::WindowsScreenStreamer(Readers readers)
    : m_readers(std::move(readers))
{
}

bool WindowsScreenStreamer::hasFrameChanged()
{
    if (!update())
        return false;
    m_isReaderFresh = true;
    return !m_changed.isEmpty();
}

bool WindowsScreenStreamer::captureTo(QImage &image)
{
    if (!std::exchange(m_isReaderFresh, false) && !update())
        return false;
    const QImage &source = m_readers.front()->image();
    if (image.isNull() || image.cacheKey() != m_filledKey) {
        m_changed = source.rect();
        // All pixels are overwritten, so a shared buffer need not be copied first.
        if (image.size() != source.size() || image.format() != kFrameFormat || !image.isDetached()) {
            QImage fresh(source.size(), kFrameFormat);
            if (fresh.isNull()) {
                setError(QStringLiteral("There is not enough memory for a frame of the screen."));
                return false;
            }
            image = std::move(fresh);
        }
    }
    for (const QRect &rect : m_changed) {
        const QImage part(source.constScanLine(rect.y()) + rect.x() * int(sizeof(QRgb)), rect.width(), rect.height(),
                          source.bytesPerLine(), source.format());
        copyOpaque(part, rect.topLeft(), image);
    }
    m_filledKey = image.cacheKey();
    m_changed = {};
    return true;
}

QString WindowsScreenStreamer::errorString() const
{
    const std::lock_guard lock(m_errorMutex);
    return m_error;
}

/// Updates the image of the reader. False when the desktop cannot currently be read.
bool WindowsScreenStreamer::update()
{
    while (!m_readers.empty()) {
        const DesktopReader::Update update = m_readers.front()->update();
        if (update.state != DesktopReader::State::Unusable) {
            m_changed += update.changed;
            return update.state == DesktopReader::State::Ready;
        }
        m_readers.erase(m_readers.begin());
    }
    setError(QStringLiteral("Windows refuses access to the pixels of the desktop."));
    return false;
}

void WindowsScreenStreamer::setError(const QString &error)
{
    {
        const std::lock_guard lock(m_errorMutex);
        if (error == m_error)
            return;
        m_error = error;
    }
    qCWarning(logScreen, "[WindowsScreenStreamer] %s", qUtf8Printable(error));
}

} // namespace kel
