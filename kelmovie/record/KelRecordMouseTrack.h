#pragma once

#include "record/KelRecordTrack.h"

#include <memory>

class KelRecordMouseTrackPrivate;

/// Records the pointer: its place and shape once a logic frame, its buttons and wheel as they happen anywhere on the
/// desktop. Writes "mousemoves-0.json", "mouseclicks-0.json", "cursor.json" and a picture of each shape in "cursors".
///
/// A pause does not matter to this track: what is clicked meanwhile belongs to the frame before it.
class KelRecordMouseTrack : public KelRecordTrack
{
    Q_OBJECT

public:
    KelRecordMouseTrack(const QRect &recordArea, const QString &trackDir);
    ~KelRecordMouseTrack() override;

    void recordFrame(int frameIndex) override;
    void startRecording() override;
    void stopRecording(qint64 frameCount, qint64 durationMs) override;
    void checkpoint(qint64 frameCount) override;

    /// Whether buttons and wheel are recorded, as they are at first. Any thread.
    void setCaptureEnabled(bool enabled);

private:
    void writeEvents();
    void writeCursorList();
    void fail(const QString &path, const QString &error);

    const std::unique_ptr<KelRecordMouseTrackPrivate> d;
};
