#pragma once

#include "screen/KelScreenStreamer.h"
#include "screen/windows/DesktopReader.h"

#include <QRegion>

#include <memory>
#include <mutex>
#include <vector>

namespace kel
{

/// Captures a rectangle of the desktop with the first reader that works, and switches to the next one when a reader
/// fails permanently.
///
/// When the caller passes the image of the previous capture, only the changes since then are copied; any other image is
/// filled completely. While the desktop cannot be read, nothing changes.
class WindowsScreenStreamer final : public KelScreenStreamer
{
public:
    using Readers = std::vector<std::unique_ptr<DesktopReader>>;

    /// All readers read the same rectangle; the preferred one comes first.
    explicit WindowsScreenStreamer(Readers readers);

    bool hasFrameChanged() override;
    bool captureTo(QImage &image) override;
    QString errorString() const override;

private:
    bool update();
    void setError(const QString &error);

    Readers m_readers;
    QRegion m_changed;            // since the last capture
    bool m_isReaderFresh = false; // the reader was updated since the last capture
    qint64 m_filledKey = 0;       // identifies the image of the last capture in its unmodified state

    mutable std::mutex m_errorMutex;
    QString m_error;
};

} // namespace kel
