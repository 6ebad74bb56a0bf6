#pragma once

#include <QImage>
#include <QString>

#include <functional>
#include <memory>

class KelAVCodecEncoder;

namespace kel
{

class ExportDirectory;
class ExportProgress;

/// The encoder of one export. After a cancel it returns at once: the encoder finishes its current work in the
/// background and is destroyed there, together with the directory of its file.
class ExportEncoder
{
public:
    /// `encoder` may be null. `directory` contains its file; `progress` must outlive this.
    ExportEncoder(std::unique_ptr<KelAVCodecEncoder> encoder, std::shared_ptr<ExportDirectory> directory,
                  ExportProgress &progress);
    /// Aborts the encoder if close() has not succeeded.
    ~ExportEncoder();
    ExportEncoder(const ExportEncoder &) = delete;
    ExportEncoder &operator=(const ExportEncoder &) = delete;

    bool isValid() const;
    QString errorString() const;

    // The following return false when the encoder has failed, and when the export has been cancelled.

    bool addFrame(qint64 index, const QImage &image);
    /// Repeats the last image up to, but not including, frame `end`.
    bool repeatLastFrameUntil(qint64 end);
    /// Completes the file; `meanwhile` is called repeatedly.
    bool close(const std::function<void()> &meanwhile);

    /// After a failure: closes the file, which the encoder may have completed up to the failure, and destroys the
    /// encoder. Returns the number of frames in the file.
    qint64 salvage();

    /// Frames that are in the file so far.
    qint64 framesWritten() const;

private:
    using Work = std::function<bool(KelAVCodecEncoder &encoder)>;

    bool waitForRoom();
    bool runInBackground(Work work, const std::function<void()> &meanwhile);

    std::shared_ptr<KelAVCodecEncoder> m_encoder;
    const std::shared_ptr<ExportDirectory> m_directory;
    ExportProgress &m_progress;
    bool m_isComplete = false;
};

} // namespace kel
