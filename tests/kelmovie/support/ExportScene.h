#pragma once

#include "kelmovie/support/RecordingOnDisk.h"

#include <KelMovie/KelMovieConfig.h>

#include <QImage>
#include <QPainter>

/// A short recording with all layers: a video that does not always change, the pointer with the effect of a click, and
/// keys. While it exists, the settings show all of them and the progress bar.
class ExportScene
{
public:
    static constexpr int VideoFrames = 12;
    static constexpr int LogicFrames = 60;
    static constexpr int Fps = 20;
    static constexpr int Side = 96;

    ExportScene()
    {
        m_recording.area(QRect(10, 20, Side, Side))
            .frames(LogicFrames, Fps, [](int i) { return i < 3 ? -1 : videoFrameAt(i); })
            .video(VideoFrames, image)
            .cursor()
            .moves("0:20,30 4:30,40 5:50,60")
            .clicks("8 left down, 9 left up")
            .keys("20:+Control 22:+C 24:-C 25:-Control");
        gKelMovieConfig.playbackProgressEnable = true;
        gKelMovieConfig.playbackProgressDisplayMode = 1;
        gKelMovieConfig.playbackProgressGapTime = 500;
    }
    ~ExportScene() { gKelMovieConfig = {}; }

    QString path() const { return m_recording.path(); }
    QString videoPath() const { return m_recording.filePath("Screen/screen_record.mp4"); }

    /// A video frame: its own color, with a black square at its own position.
    static QImage image(int videoFrame)
    {
        QImage image(Side, Side, QImage::Format_ARGB32_Premultiplied);
        image.fill(QColor::fromHsv(videoFrame * 30, 120, 220));
        QPainter(&image).fillRect(videoFrame * 8, 40, 16, 16, Qt::black);
        return image;
    }
    static int videoFrameAt(int logicFrame) { return qBound(0, logicFrame / 3 - 1, VideoFrames - 1); }

private:
    RecordingOnDisk m_recording;
};
