#pragma once

#include "kelmovie/support/RecordingOnDisk.h"
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
    enum Frame {
        ClickFrame = 10,
        PlainFrame = 60,
        ShortcutFrame = 100,
        LetterFrame = 200,
        SecondClickFrame = 260,
        WheelFrame = 310
    };

    explicit OverlayRecording(double pixelRatio = 1)
    {
        m_files.size(640, 360)
            .set(&KelRecordingMetadata::pixelRatio, pixelRatio)
            .frames(400)
            .keys("98:+Return 99:+Control 100:+C 101:-C 102:-Control "
                  "195:+A 196:+B 197:+C 198:+D 199:+E 200:+F")
            .cursor()
            .moves("0:400,100")
            .clicks(mouseClicks("5 left down, 7 left up, 250 left down, 251 left up, 255 left down, "
                                "256 left up, 300 wheel 120",
                                QPoint(400, 100)));
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
        QImage image(m_files.metadata().recordArea.size(), QImage::Format_ARGB32_Premultiplied);
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
    RecordingOnDisk m_files;
};
