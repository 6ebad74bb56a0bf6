#pragma once

#include "record/KelRecordTrack.h"
#include "record/MouseEventList.h"
#include "recording/input/CursorListWriter.h"
#include "recording/input/MouseEventWriter.h"

#include <memory>

class KelCursorPixmap;
class KelRecordMouseTrackPrivate;

/// Records the pointer: its position and shape once per logic frame, its buttons and wheel as they are used anywhere on
/// the desktop. Writes "mousemoves-0.json", "mouseclicks-0.json", "cursor.json" and an image of each shape in
/// "cursors".
///
/// Pausing does not affect this track: clicks during a pause belong to the frame before it.
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

    /// Whether buttons and wheel are recorded; initially on. Any thread.
    void setCaptureEnabled(bool enabled);

private:
    void writeEvents();
    void writeCursorList();
    void fail(const QString &path, const QString &error);

    kel::MouseEventList m_events; // shared with the hook's thread; all else belongs to the track's thread
    kel::MouseEventWriter m_eventWriter;
    kel::CursorListWriter m_cursorWriter;
    std::shared_ptr<const KelCursorPixmap> m_snapshot; // kept, because it makes the next one cheap
    bool m_hasFailed = false;
    const std::unique_ptr<KelRecordMouseTrackPrivate> d; // last, so that the hook ends before what it uses
};
