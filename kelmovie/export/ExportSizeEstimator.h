#pragma once

#include <KelMovie/KelExportRequest.h>

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <vector>

class KelPlaybackTrackManager;

namespace kel
{

class ExportFrameMap;
class SampleFile;

/// Tells how large an export becomes by really encoding samples of it: short runs of frames, spread over the range.
/// Works in the background of the event loop, composing one picture at a time and encoding on another thread; the
/// recording is opened a second time, so that the one that somebody looks at stays where it is. GUI thread.
class ExportSizeEstimator : public QObject
{
    Q_OBJECT

public:
    struct Estimate {
        qint64 bytes = 0;
        double error = 0; ///< a share of the bytes; the file differs by more in one of twenty cases
        bool isFinal = false;
    };

    explicit ExportSizeEstimator(QObject *parent = nullptr);
    ~ExportSizeEstimator() override;

    /// Begins anew, with the settings as they are. The request's paths are not used.
    void start(const KelExportRequest &request);
    /// Gives up, and closes the recording.
    void stop();
    bool isRunning() const { return m_timer.isActive(); }

signals:
    /// An estimate, which the next one refines.
    void sigEstimated(const ExportSizeEstimator::Estimate &estimate);
    void sigFailed(const QString &error);

private:
    /// A run of output frames and the sizes of two files: of its first frame, and of all.
    struct Sample {
        qint64 first = 0;
        int frames = 1;
        qint64 keyBytes = 0;
        qint64 bytes = 0;
    };

    void work();
    bool isWaiting() const;
    void step();
    bool open();
    void planSamples();
    void addPicture();
    void encodePicture();
    QSize outputSize() const;
    void takeBytes();
    void report();
    double exportBytes(const Sample &sample) const;
    double soundBytes() const;
    void fail(const QString &error);

    KelExportRequest m_request;
    QString m_recordDir;
    std::unique_ptr<KelPlaybackTrackManager> m_playback; // opened here
    std::unique_ptr<ExportFrameMap> m_map;
    std::vector<Sample> m_samples;
    std::size_t m_sample = 0; // the one that is being encoded
    std::unique_ptr<SampleFile> m_file;
    int m_fileFrames = 0; // of it, once it is complete
    int m_nextFrame = 0;
    int m_prefetched = -1;  // the logic frame that is being decoded
    quint64 m_revision = 0; // of the picture that was encoded last
    QTimer m_timer;
};

} // namespace kel
