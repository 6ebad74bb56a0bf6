#pragma once

#include <KelMovie/KelExportRequest.h>

#include <QSize>
#include <QString>
#include <QTemporaryDir>

#include <future>
#include <memory>

class KelAVCodecEncoder;
class QImage;

namespace kel
{

/// Encodes a few frames into a temporary file of an export format, to learn its size. The encoding runs on another
/// thread; all functions are to be called on one thread.
class TrialEncode
{
public:
    /// `size`: of the frames, in pixels.
    TrialEncode(const KelExportRequest &request, const QSize &size);
    /// Aborts a running operation.
    ~TrialEncode();
    TrialEncode(const TrialEncode &) = delete;
    TrialEncode &operator=(const TrialEncode &) = delete;

    /// Whether the last operation is still running. Nothing else may be called meanwhile.
    bool isBusy();
    /// Empty unless the encoder has failed.
    QString errorString() const;

    /// Starts to encode `image`, which is shown from `frame` on.
    void add(int frame, const QImage &image);
    /// Starts to complete the file, which repeats the last image up to, but not including, frame `end`.
    void close(int end);
    bool isClosed() const { return m_isClosed; }
    /// Size of the completed file.
    qint64 bytes() const;

private:
    QString path() const;

    const QTemporaryDir m_directory;
    std::unique_ptr<KelAVCodecEncoder> m_encoder;
    bool m_isClosed = false;
    bool m_hasFailed = false;
    std::future<bool> m_work; // declared last: it uses the encoder
};

} // namespace kel
