#pragma once

#include "record/KelRecordTrack.h"

#include <memory>

class KelRecordKeyboardTrackPrivate;

/// Records every key that goes down or up anywhere on the desktop, with its logic frame, in "keyboard.keymeta".
///
/// What people type is secret: the file is for its owner alone, and while keys are not captured none reaches this
/// process. Going on after a pause begins the log anew: the keys from before the pause are forgotten.
class KelRecordKeyboardTrack : public KelRecordTrack
{
    Q_OBJECT

public:
    /// Creates `trackDir`.
    KelRecordKeyboardTrack(const QRect &recordArea, const QString &trackDir);
    ~KelRecordKeyboardTrack() override;

    void recordFrame(int frameIndex) override;
    void startRecording() override;
    void pauseRecording() override;
    void stopRecording(qint64 frameCount, qint64 durationMs) override;
    void checkpoint(qint64 frameCount) override;

    /// Switch the keys on and off in the middle of a recording. Any thread. Each switch leaves a marker in the log; no
    /// key that is typed after disableCapture() is called gets into it. Off stays off over a pause.
    void enableCapture();
    void disableCapture();

private:
    void fail();

    const std::unique_ptr<KelRecordKeyboardTrackPrivate> d;
};
