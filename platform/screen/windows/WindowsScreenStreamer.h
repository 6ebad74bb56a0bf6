#pragma once

#include "screen/KelScreenStreamer.h"
#include "screen/windows/DesktopReader.h"

#include <QRegion>

#include <memory>
#include <mutex>
#include <vector>

namespace kel
{

/// Captures a rectangle of the desktop with the first reader that works, and with the next one once that fails for
/// good.
///
/// Only what changed since the last capture is copied, as long as the caller hands in the image of that capture; any
/// other image is filled anew. While the desktop cannot be read nothing changes: the last picture stays.
class WindowsScreenStreamer final : public KelScreenStreamer
{
public:
    using Readers = std::vector<std::unique_ptr<DesktopReader>>;

    /// All read the same rectangle; the best one comes first.
    explicit WindowsScreenStreamer(Readers readers);

    bool hasFrameChanged() override;
    bool captureTo(QImage &image) override;
    QString errorString() const override;

private:
    bool update();
    void setError(const QString &error);

    Readers m_readers;
    QRegion m_changed;      // since the last capture
    bool m_asked = false;   // there was a question since the last capture, and so the reader's picture is fresh
    qint64 m_filledKey = 0; // tells the image that the last capture filled, and that nobody has changed it since

    mutable std::mutex m_errorMutex;
    QString m_error;
};

} // namespace kel
