#pragma once

#include <QObject>
#include <QString>

#include <atomic>

class QSaveFile;
namespace kel
{
class SpeedFrameMap;
} // namespace kel

/// Turns a WAV file into one that plays at another speed, so that an exported video keeps its sound in step.
///
/// Whole sample frames are dropped or repeated and the pitch changes with the speed; nothing is blended. Input of 32
/// bits is taken for float, whatever its header says, and becomes 16-bit PCM, scaled down as a whole when it exceeds
/// full scale. Files of any length are handled in blocks of about a megabyte.
class KelAudioSpeedProcessor : public QObject
{
    Q_OBJECT

public:
    explicit KelAudioSpeedProcessor(QObject *parent = nullptr);
    ~KelAudioSpeedProcessor() override;

    /// Runs on the caller's thread and emits from it. At speed 1 the file is copied as it is. An existing output is
    /// replaced when the new one is whole. False on failure, errorMessage() tells why.
    bool processAudio(const QString &inputPath, double speed, const QString &outputPath);

    /// Empty unless the last run failed.
    QString errorMessage() const { return m_errorMessage; }

    /// Any thread: this processor's runs, a present one included, fail within milliseconds.
    void cancel() { m_isCancelled = true; }

signals:
    /// 0 to 100, about a hundred times a run.
    void progressChanged(int percentage);
    /// With true after every success, with false when a copy at speed 1 failed.
    void processingFinished(bool success);

private:
    struct WavFile;

    bool copy(const QString &inputPath, const QString &outputPath);
    bool readWavFile(const QString &path, WavFile *wav);
    bool writeWavFile(const QString &path, WavFile &wav, const kel::SpeedFrameMap &map);
    bool changeSpeed(WavFile &wav, const kel::SpeedFrameMap &map, float *gain, QSaveFile &output);
    bool fail(const QString &message);

    QString m_errorMessage;
    std::atomic<bool> m_isCancelled{false};
};
