#include "screen/windows/WindowsScreenStreamer.h"

#include "logging/PlatformLog.h"
#include "screen/OpaqueCopy.h"

#include <QDebug>

#include <utility>

namespace kel
{

namespace
{

constexpr QImage::Format frameFormat = QImage::Format_ARGB32_Premultiplied;

} // namespace

WindowsScreenStreamer::WindowsScreenStreamer(Readers readers)
    : m_readers(std::move(readers))
{
}

bool WindowsScreenStreamer::hasFrameChanged()
{
    if (!update())
        return false;
    m_asked = true;
    return !m_changed.isEmpty();
}

bool WindowsScreenStreamer::captureTo(QImage &image)
{
    if (!std::exchange(m_asked, false) && !update())
        return false;
    const QImage &picture = m_readers.front()->picture();
    if (image.isNull() || image.cacheKey() != m_filledKey) {
        m_changed = picture.rect();
        // All of it is written: a buffer that others share need not be copied first.
        if (image.size() != picture.size() || image.format() != frameFormat || !image.isDetached()) {
            QImage fresh(picture.size(), frameFormat);
            if (fresh.isNull()) {
                setError(QStringLiteral("There is no memory for a picture of the screen."));
                return false;
            }
            image = std::move(fresh);
        }
    }
    for (const QRect &rect : m_changed) {
        const QImage part(picture.constScanLine(rect.y()) + rect.x() * int(sizeof(QRgb)), rect.width(), rect.height(),
                          picture.bytesPerLine(), picture.format());
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

/// Has the reader look at the desktop. False when it cannot be read now.
bool WindowsScreenStreamer::update()
{
    while (!m_readers.empty()) {
        const DesktopReader::Update news = m_readers.front()->update();
        if (news.state != DesktopReader::State::Unusable) {
            m_changed += news.changed;
            return news.state == DesktopReader::State::Ready;
        }
        m_readers.erase(m_readers.begin());
    }
    setError(QStringLiteral("Windows refuses to hand out the pixels of the desktop."));
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
