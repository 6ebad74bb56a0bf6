#pragma once

#include "kelmovie/support/KeyScript.h"
#include "kelmovie/support/MouseFixture.h"
#include "kelmovie/support/RecordedVideo.h"

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
        m_recording.metadata.recordArea = QRect(10, 20, Side, Side);
        m_recording.metadata.mouseTrack = m_recording.metadata.keyboardTrack = true;
        m_recording.save();
        m_recording.writeIndexes(LogicFrames, [](int i) { return i < 3 ? -1 : videoFrameAt(i); });
        writeVideo(m_recording, VideoFrames, image);
        m_mouse.writeSquareCursor();
        m_mouse.write("mousemoves-0.json", QJsonArray{MouseFixture::move(0, 20, 30), MouseFixture::move(4, 30, 40),
                                                      MouseFixture::move(5, 50, 60)});
        m_mouse.write("mouseclicks-0.json", MouseFixture::clicks("8 left down, 9 left up"));
        writeKeyMeta(m_recording.path() + "/Keyboard",
                     keyMetaFile(keyScript("20:+Control 22:+C 24:-C 25:-Control"), QSize(Side, Side), Fps));
        gKelMovieConfig.playbackProgressEnable = true;
        gKelMovieConfig.playbackProgressDisplayMode = 1;
        gKelMovieConfig.playbackProgressGapTime = 500;
    }
    ~ExportScene() { gKelMovieConfig = {}; }

    QString path() const { return m_recording.path(); }
    QString videoPath() const { return m_recording.screenDir() + "/screen_record.mp4"; }

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
    RecordingFixture m_recording{LogicFrames, Fps};
    MouseFixture m_mouse{m_recording.path() + "/Mouse"};
};
