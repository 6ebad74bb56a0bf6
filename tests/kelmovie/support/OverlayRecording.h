#pragma once

#include "kelmovie/support/KeyScript.h"
#include "kelmovie/support/RecordingFixture.h"
#include "kelmovie/support/ScriptedDecoder.h"

#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"

#include <QImage>
#include <QPainter>

#include <memory>

/// A recording in which each kind of overlay is visible at a known frame.
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
        KelPlaybackDependencies dependencies = KelPlaybackDependencies::real();
        dependencies.decoders = scriptedDecoders(m_script);
        return kel::PlaybackInternals::load(m_files.path(), dependencies);
    }

    /// The composed current frame, without the corner of the scripted video, whose color encodes the frame number.
    QImage image(KelPlaybackTrackManager &manager) const
    {
        QImage image(m_files.metadata.recordArea.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::gray);
        QPainter painter(&image);
        manager.paint(&painter);
        painter.fillRect(QRect(QPoint(), m_script->frameSize), Qt::black);
        return image;
    }
    /// The same at `frame`, played up to it, because effects advance with each frame.
    QImage imageAt(KelPlaybackTrackManager &manager, int frame) const
    {
        for (int step = 0; step <= frame; ++step)
            kel::PlaybackInternals::engine(manager).setFrameSilently(step);
        return image(manager);
    }

private:
    std::shared_ptr<DecoderScript> m_script = std::make_shared<DecoderScript>();
    RecordingFixture m_files{400};
};
