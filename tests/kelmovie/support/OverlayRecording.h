#pragma once

#include "kelmovie/support/KeyScript.h"
#include "kelmovie/support/RecordingFixture.h"
#include "kelmovie/support/ScriptedDecoder.h"

#include "playback/KelPlaybackTrackManager.h"

#include <QImage>
#include <QPainter>

#include <memory>

/// A recording at whose frames each of the overlays is to be seen.
class OverlayRecording
{
public:
    enum Frame { ClickFrame = 10, PlainFrame = 60, ShortcutFrame = 100, LetterFrame = 200, WheelFrame = 310 };

    OverlayRecording()
    {
        m_files.metadata.recordArea = QRect(0, 0, 640, 360);
        m_files.metadata.keyboardTrack = m_files.metadata.mouseTrack = true;
        m_files.save();
        writeKeyMeta(m_files.path() + "/Keyboard",
                     keyMetaFile(keyScript("98:+Return 99:+Control 100:+C 101:-C 102:-Control "
                                           "195:+A 196:+B 197:+C 198:+D 199:+E 200:+F"),
                                 QSize(640, 360)));
        QDir().mkpath(m_files.path() + "/Mouse/cursors");
        QImage cursor(16, 16, QImage::Format_ARGB32);
        cursor.fill(Qt::white);
        cursor.save(m_files.path() + "/Mouse/cursors/arrow.png");
        m_files.write("Mouse/cursor.json", R"({"cursors": [{"id": "arrow", "image": "arrow.png"}]})");
        m_files.write("Mouse/mousemoves-0.json",
                      R"([{"frame": 0, "x": 400, "y": 100, "cursor": "arrow", "timestamp": 1}])");
        m_files.write("Mouse/mouseclicks-0.json", R"([
        {"frame": 5, "x": 400, "y": 100, "action": "click", "button": "left", "timestamp": 200},
        {"frame": 7, "x": 400, "y": 100, "action": "release", "button": "left", "timestamp": 280},
        {"frame": 300, "x": 400, "y": 100, "action": "wheel", "button": "wheel", "delta": 120, "timestamp": 9000}])");
    }

    std::unique_ptr<KelPlaybackTrackManager> load() const
    {
        KelPlaybackSeams seams = KelPlaybackSeams::real();
        seams.decoders = scriptedDecoders(m_script);
        return std::make_unique<KelPlaybackTrackManager>(m_files.path(), false, seams, nullptr);
    }

    /// The composed picture of the present frame, but for the scripted video's corner, which tells the frame.
    QImage picture(KelPlaybackTrackManager &manager) const
    {
        QImage image(m_files.metadata.recordArea.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::gray);
        QPainter painter(&image);
        manager.paint(&painter);
        painter.fillRect(QRect(QPoint(), m_script->frameSize), Qt::black);
        return image;
    }
    /// Stepped through, because effects are played by steps.
    QImage pictureAt(KelPlaybackTrackManager &manager, int frame) const
    {
        for (int step = 0; step <= frame; ++step)
            manager.setFrameSilently(step);
        return picture(manager);
    }

private:
    std::shared_ptr<DecoderScript> m_script = std::make_shared<DecoderScript>();
    RecordingFixture m_files{400};
};
