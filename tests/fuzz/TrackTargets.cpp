// Metadata, frame index, mouse and keys.

#include "FuzzTarget.h"

#include "playback/keys/KeyDisplayListBuilder.h"
#include "playback/mouse/ClickPlayer.h"
#include "playback/mouse/PointerList.h"
#include "recording/FrameIndexReader.h"
#include "recording/FrameTimesReader.h"
#include "recording/KelRecordingMetadata.h"
#include "recording/RecordingTimeline.h"
#include "recording/input/CursorListReader.h"
#include "recording/input/KeyLogReader.h"

#include <QFileInfo>

#include <algorithm>

using namespace kel;

namespace
{

/// Distance of the frames that are looked up.
constexpr int kFrameStep = 7;
constexpr int kLastFrame = 500;

QString directoryOf(const QString &path)
{
    return QFileInfo(path).path();
}

void metadata(const QByteArray &input)
{
    KelRecordingMetadata read;
    if (!KelRecordingMetadata::fromJson(input, &read))
        return;
    expect(read.fps >= 1 && read.fps <= KelRecordingMetadata::kMaxFps, "the frame rate is in its range");
    expect(read.durationMs >= 0 && read.totalFrames >= 0 && read.actualRecordedFrames >= 0, "nothing is negative");
    KelRecordingMetadata again;
    expect(KelRecordingMetadata::fromJson(read.toJson(), &again) && again.toJson() == read.toJson(),
           "what was read can be written and read again");
}

void frameIndex(const QByteArray &input)
{
    std::vector<int> frames;
    const bool isRead = readFrameIndex(directoryOf(writeScratch("frame_indexes.dat", input)), frames);
    expect(isRead != frames.empty(), "only a file that cannot be used has no entries");
}

void frameTimes(const QByteArray &input)
{
    const std::vector<int> times = readFrameTimes(directoryOf(writeScratch("frame_times.dat", input)));
    expect(times.empty() || times.front() >= 0, "no frame was recorded before the start");
    expect(std::is_sorted(times.begin(), times.end()), "time does not run backwards");
}

void mouseMoves(const QByteArray &input)
{
    PointerList moves;
    moves.load(writeScratch("mousemoves-0.json", input));
    for (int frame = -1; frame < kLastFrame; frame += kFrameStep) {
        const PointerList::Sample *const sample = moves.at(frame);
        expect(!sample || sample->frame <= frame, "a position is not from the future");
        expect(!sample || sample->cursor < moves.cursorIds().size(), "every cursor has an id");
        const int next = moves.nextFrame(frame);
        expect(next == -1 || next > frame, "the next frame is a later one");
    }
}

void mouseClicks(const QByteArray &input)
{
    const RecordingTimeline timeline(kLastFrame, 25, 0);
    for (const bool followsTime : {false, true}) {
        ClickPlayer clicks;
        clicks.load(writeScratch("mouseclicks-0.json", input));
        if (followsTime) {
            clicks.pairNearestReleases();
            clicks.followTime(timeline);
        }
        for (int frame = 0; frame < kLastFrame; frame += kFrameStep) {
            clicks.seekToFrame(frame);
            clicks.shown(QPoint());
            expect(clicks.pointerScale() > 0.0, "the pointer has a size");
        }
    }
}

QByteArray cursorImage()
{
    static const QByteArray png =
        QByteArray::fromBase64("iVBORw0KGgoAAAANSUhEUgAAAAIAAAACCAYAAABytg0kAAAAFElEQVR42mNk+M9Qz4AEmBjQAAA1"
                               "YQIBGfSzBwAAAABJRU5ErkJggg==");
    return png;
}

void cursorList(const QByteArray &input)
{
    writeScratch("cursors/arrow.png", cursorImage());
    CursorImages cursors;
    readCursorList(directoryOf(writeScratch("cursor.json", input)), cursors);
}

void cursorFile(const QByteArray &input)
{
    writeScratch("cursors/input.png", input);
    CursorImages cursors;
    readCursorList(directoryOf(writeScratch("cursor.json", R"({"cursors": [{"id": "a", "image": "input.png"}]})")),
                   cursors);
    for (const CursorImage &cursor : qAsConst(cursors))
        expect(!cursor.image.isNull(), "a cursor that is returned can be painted");
}

void keyLog(const QByteArray &input)
{
    KeyLog log;
    readKeyLog(directoryOf(writeScratch("keyboard.keymeta", input)), log);
    expect(log.fps >= 1 && log.fps <= KelRecordingMetadata::kMaxFps, "the frame rate is in its range");
    const RecordingTimeline timeline(kLastFrame, log.fps, 0);
    for (const KelPlaybackRules &rules : {KelPlaybackRules(), KelPlaybackRules::recommended()}) {
        const KeyDisplayList list =
            KeyDisplayListBuilder::build(log, kLastFrame, KeyDisplaySettings(), rules, timeline);
        int last = -1;
        for (const KeyDisplayEntry &entry : list.entries) {
            expect(last < entry.firstFrame && entry.firstFrame <= entry.lastFrame, "entries are in order");
            last = entry.lastFrame;
            expect(entry.historyBegin >= 0 && entry.historyBegin <= entry.historyEnd &&
                       entry.historyEnd <= int(list.past.size()),
                   "the history of an entry exists");
        }
    }
}

} // namespace

std::vector<FuzzTarget> trackTargets()
{
    return {{"metadata", metadata},        {"frame_index", frameIndex},
            {"frame_times", frameTimes},   {"mouse_moves", mouseMoves},
            {"mouse_clicks", mouseClicks}, {"cursor_list", cursorList},
            {"cursor_image", cursorFile},  {"key_log", keyLog}};
}
