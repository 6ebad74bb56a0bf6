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

/// A few pictures in a temporary file of an export format, encoded without anybody waiting for it. One thread.
class SampleFile
{
public:
    SampleFile(const KelExportRequest &request, const QSize &size);
    /// Gives up what is being done.
    ~SampleFile();
    SampleFile(const SampleFile &) = delete;
    SampleFile &operator=(const SampleFile &) = delete;

    /// The step before is still being done on another thread. Nothing else is to be called meanwhile.
    bool isBusy();
    /// Empty unless the encoder has failed.
    QString errorString() const;

    /// Begins to encode the picture that is shown from `frame` on.
    void add(int frame, const QImage &picture);
    /// Begins to complete the file, in which the last picture is shown until frame `end`.
    void close(int end);
    bool isClosed() const { return m_isClosed; }
    /// Of the file that was completed.
    qint64 bytes() const;

private:
    QString path() const;

    const QTemporaryDir m_directory;
    std::unique_ptr<KelAVCodecEncoder> m_encoder;
    bool m_isClosed = false;
    bool m_hasFailed = false;
    std::future<bool> m_work; // last: it uses the encoder
};

} // namespace kel
