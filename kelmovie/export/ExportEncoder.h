#pragma once

#include <QImage>
#include <QString>

#include <functional>
#include <memory>

class KelAVCodecEncoder;
class QTemporaryDir;

namespace kel
{

class ExportWatch;

/// The encoder of one export, which never keeps a user waiting who has given up: what the encoder is working on then,
/// it ends unobserved, and the directory of its file goes with it.
class ExportEncoder
{
public:
    /// `encoder` may be null. `directory` holds its file; `watch` must outlive this.
    ExportEncoder(std::unique_ptr<KelAVCodecEncoder> encoder, std::shared_ptr<QTemporaryDir> directory,
                  ExportWatch &watch);
    /// Gives up a file that was not closed.
    ~ExportEncoder();
    ExportEncoder(const ExportEncoder &) = delete;
    ExportEncoder &operator=(const ExportEncoder &) = delete;

    bool isValid() const;
    QString errorString() const;

    // False when the encoder has failed, and when the export was cancelled, which the watch tells.
    bool addFrame(qint64 index, const QImage &image);
    /// Shows the latest picture until frame `end`.
    bool repeatLastFrameUntil(qint64 end);
    /// Finishes the file; `meanwhile` is called now and then.
    bool close(const std::function<void()> &meanwhile);

    /// After a failure: lets go of the file, which the encoder may have completed before what failed. How many frames
    /// it has.
    qint64 salvage();

    qint64 framesWritten() const;

private:
    using Work = std::function<bool(KelAVCodecEncoder &encoder)>;

    bool waitForRoom();
    bool runBeside(Work work, const std::function<void()> &meanwhile);

    std::shared_ptr<KelAVCodecEncoder> m_encoder;
    const std::shared_ptr<QTemporaryDir> m_directory;
    ExportWatch &m_watch;
    bool m_isComplete = false;
};

} // namespace kel
