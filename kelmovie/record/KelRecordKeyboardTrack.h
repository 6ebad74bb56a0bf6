#pragma once

#include "process/CoreDumpBlock.h"
#include "record/KelRecordTrack.h"
#include "recording/input/KeyLogWriter.h"

#include <QKeySequence>
#include <QVector>

#include <memory>
#include <optional>

class KelRecordKeyboardTrackPrivate;

/// Records every key press and release on the desktop, with its logic frame, in "keyboard.keymeta".
///
/// Typed text is secret: only its owner can read the file, a crash dumps no memory, and while capture is off, no key
/// reaches this process.
class KelRecordKeyboardTrack : public KelRecordTrack
{
    Q_OBJECT

public:
    /// What a resume does with the keys from before the pause.
    enum class AtResume {
        Discard, ///< starts an empty log
        Keep     ///< keeps them; markers in the log enclose the pause
    };

    /// Creates `trackDir`.
    KelRecordKeyboardTrack(const QRect &recordArea, const QString &trackDir, AtResume atResume = AtResume::Discard);
    ~KelRecordKeyboardTrack() override;

    void recordFrame(int frameIndex) override;
    void startRecording() override;
    void pauseRecording() override;
    void stopRecording(qint64 frameCount, qint64 durationMs) override;
    void checkpoint(qint64 frameCount) override;

    /// Combinations with which the user controls the recording. When one pauses or stops it, its keys are not part of
    /// the recording. Before the start.
    void setControlShortcuts(const QVector<QKeySequence> &shortcuts);

    /// Ignores keys until the next startRecording(): a pause or stop takes effect at once, although the track's thread
    /// may be busy. Any thread.
    void suspend();

    /// Switch capture on and off during a recording. Any thread. Each switch adds a marker to the log; keys typed after
    /// the call of disableCapture() are not recorded. Capture that is off stays off across a pause.
    void enableCapture();
    void disableCapture();

private:
    void fail();

    std::optional<kel::CoreDumpBlock> m_coreDumpBlock; // while this process has keys in memory
    const std::unique_ptr<KelRecordKeyboardTrackPrivate> d;
    kel::KeyLogWriter m_file;
};
