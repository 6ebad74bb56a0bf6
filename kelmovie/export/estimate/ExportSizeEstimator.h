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
class PlaybackEngine;
class TrialEncode;

/// Estimates the file size of an export by encoding excerpts of it: short runs of frames, spread over the range. Works
/// in small slices on the event loop, composing one frame at a time and encoding on another thread. The recording is
/// opened a second time, so that the one in the user interface stays at its frame. GUI thread only.
class ExportSizeEstimator : public QObject
{
    Q_OBJECT

public:
    struct Estimate {
        qint64 bytes = 0;
        double error = 0;     ///< as a fraction of `bytes`: two standard deviations, which 95% of files stay within
        bool isFinal = false; ///< no further estimate follows
    };

    explicit ExportSizeEstimator(QObject *parent = nullptr);
    ~ExportSizeEstimator() override;

    /// Starts, or restarts, with the current settings. The paths in the request are not used.
    void start(const KelExportRequest &request);
    /// Aborts, and closes the recording.
    void stop();
    bool isRunning() const { return m_timer.isActive(); }

signals:
    /// An estimate; the next one is more precise.
    void sigEstimated(const ExportSizeEstimator::Estimate &estimate);
    void sigFailed(const QString &error);

private:
    /// A run of output frames, which is encoded into two files.
    struct Excerpt {
        qint64 first = 0;         ///< its first output frame
        int frames = 1;           ///< number of frames
        qint64 keyFrameBytes = 0; ///< size of the file with its first frame only
        qint64 bytes = 0;         ///< size of the file with all frames
    };

    PlaybackEngine &playback() const;
    void work();
    bool isBusy() const;
    void advance();
    bool open();
    void planExcerpts();
    void addFrame();
    void encodeFrame();
    void storeSize();
    void report();
    double exportBytes(const Excerpt &excerpt) const;
    double soundBytes() const;
    void fail(const QString &error);

    KelExportRequest m_request;
    QString m_recordDir;
    std::unique_ptr<KelPlaybackTrackManager> m_manager; // of the recording opened here
    std::unique_ptr<ExportFrameMap> m_map;
    std::vector<Excerpt> m_excerpts;
    std::size_t m_current = 0; // index of the excerpt that is being encoded
    std::unique_ptr<TrialEncode> m_file;
    int m_fileFrames = 0;   // number of frames that m_file will contain
    int m_nextFrame = 0;    // within the excerpt
    int m_prefetched = -1;  // the logic frame that is being decoded
    quint64 m_revision = 0; // of the frame that was encoded last
    QTimer m_timer;
};

} // namespace kel
