#pragma once

#include "recording/wav/SampleConverter.h"
#include "recording/wav/WavHeader.h"
#include "recording/wav/WavReader.h"

#include <QByteArray>
#include <QIODevice>
#include <QLatin1String>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace kel
{

/// The sound of one source of a recording as a single WAV file with the 44 bytes of WavHeader, which exists nowhere: it
/// reads the sound file or, where the parts have not been joined, the parts in their order. Writes nothing and holds no
/// sound in memory. Parts that are joined and deleted meanwhile stay readable. Random access, from one thread at a
/// time.
///
/// Samples that few readers know are converted, see SampleConverter.
class RecordedSound : public QIODevice
{
public:
    enum class Integers32 {
        AsStored,
        AsFloats ///< for readers that take all samples of 32 bits for floats
    };

    /// The files in `voiceDir`, which is RECORDING/Voice, that hold the sound of a source (KelRecordingFiles::
    /// kSystemAudio or kMicrophone), in order. Empty when there are none. A sound file that is shorter than its parts
    /// is not used: joining them has failed.
    static QStringList files(const QString &voiceDir, QLatin1String source);

    /// Opens what files() has found. Of several files, one that cannot be opened is left out. If there is nothing to
    /// play, isOpen() is false and errorString() says why.
    explicit RecordedSound(const QStringList &files, Integers32 integers32 = Integers32::AsStored);

    /// Which files were left out although they may hold sound, and why; empty if none was.
    QString leftOut() const { return m_leftOut; }

    /// The header that is read from the start, with sizes.
    const WavHeader &header() const { return m_header; }
    qint64 durationMs() const;

    /// Cuts off what is beyond `ms`. To be called before anything is read.
    void limitTo(qint64 ms);

    qint64 size() const override { return WavHeader::kSize + m_dataSize; }

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    /// The samples of a file; a sample is one number of one channel.
    struct Segment {
        QString path;
        std::unique_ptr<WavReader> file; ///< not open if there are too many
        qint64 first;
        qint64 end;
    };

    QString takeFormat(const WavReader &file, Integers32 integers32);
    void add(const QString &path, std::unique_ptr<WavReader> file);
    qint64 copySound(char *data, qint64 offset, qint64 size);
    void setDataSize(qint64 bytes);
    QByteArray storedSamples(const Segment &segment, qint64 first, qint64 count);

    WavHeader m_header;
    QByteArray m_headerBytes;
    QByteArray m_fmtChunk; ///< of the files
    SampleConverter m_converter;
    std::vector<Segment> m_segments;
    qint64 m_dataSize = 0;
    QString m_leftOut;
};

} // namespace kel
