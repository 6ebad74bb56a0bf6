#pragma once

#include <QObject>
#include <QString>

#include <atomic>

class QIODevice;
class QSaveFile;
namespace kel
{
class SpeedFrameMap;
struct WavHeader;
} // namespace kel

/// Converts a WAV file to another speed, so that sound stays in sync in a video that is exported at that speed.
///
/// By default, whole sample frames are dropped or repeated without interpolation, so the pitch changes with the speed.
/// 32-bit samples are treated as floats, whatever the header says, and become 16-bit PCM, scaled down as a whole if
/// they exceed full scale. Files of any length are processed in blocks of about a megabyte.
class KelAudioSpeedProcessor : public QObject
{
    Q_OBJECT

public:
    explicit KelAudioSpeedProcessor(QObject *parent = nullptr);
    ~KelAudioSpeedProcessor() override;

    /// Keeps the pitch and the format of the samples, where StretchedSound supports the sound.
    void setKeepsPitch(bool on) { m_keepsPitch = on; }

    /// Runs on the caller's thread, and emits the signals there. At speed 1 the file is copied unchanged. An existing
    /// output is replaced only once the new one is complete. False on failure; errorMessage() says why.
    bool processAudio(const QString &inputPath, double speed, const QString &outputPath);

    /// The same for a WAV file in an open device, which is closed. It is not copied at speed 1 either, but converted.
    bool processAudio(QIODevice &input, double speed, const QString &outputPath);

    /// Empty unless the last run failed.
    QString errorMessage() const { return m_errorMessage; }

    /// The output file and why it cannot be written, for example because the disk is full. Empty unless that is why the
    /// last run failed.
    QString writeError() const { return m_writeError; }

    /// Makes the current run and all later ones fail within milliseconds. Any thread.
    void cancel() { m_isCancelled = true; }

signals:
    /// 0 to 100, about a hundred times per run.
    void progressChanged(int percentage);
    /// Emitted with true after every success, and with false only when a copy at speed 1 failed.
    void processingFinished(bool success);

private:
    struct WavFile;

    bool copy(const QString &inputPath, const QString &outputPath);
    bool readWavFile(WavFile *wav);
    bool writeWavFile(const QString &path, WavFile &wav, const kel::SpeedFrameMap &map);
    bool writeStretchedFile(const QString &path, WavFile &wav, double speed);
    bool begin(QSaveFile &output, const kel::WavHeader &header);
    bool commit(QSaveFile &output, WavFile &wav);
    bool changeSpeed(WavFile &wav, const kel::SpeedFrameMap &map, float *gain, QSaveFile &output);
    bool fail(const QString &message);
    bool failToWrite(const QSaveFile &output);

    bool m_keepsPitch = false;
    QString m_errorMessage;
    QString m_writeError;
    std::atomic<bool> m_isCancelled{false};
};
