#pragma once

#include "playback/keys/KeyDisplayList.h"
#include "playback/keys/KeyOverlayStyle.h"
#include "playback/tracks/KelPlaybackTrack.h"
#include "recording/input/KeyLogReader.h"

#include <QSize>

#include <vector>

/// The layer that shows typed keys: the current input and a short history, as boxes stacked upwards from the bottom
/// edge.
class KelPlaybackKeyboardTrack : public KelPlaybackTrack
{
    Q_OBJECT

public:
    /// Loads the keys in `directory`; errorString() is set when that fails. `pixelRatio`: logical pixels of the frame
    /// per pixel of a 96-dpi desktop. Boxes stay inside `frameSize`, unless it is empty. The default style shows no
    /// keys, see setStyle().
    KelPlaybackKeyboardTrack(const QString &directory, int totalFrames, double pixelRatio, const QSize &frameSize,
                             KelPlaybackTrackManager *manager);

    void setContext(const kel::RecordingTimeline &timeline, const KelPlaybackRules &rules) override;

    /// Applies to the current frame, too.
    void setStyle(const kel::KeyOverlayStyle &style);
    const kel::KeyOverlayStyle &style() const { return m_style; }
    /// What is displayed at every frame.
    const kel::KeyDisplayList &displayList() const { return m_list; }

    /// Frame 0 shows nothing.
    void seekToFrame(int frame) override;
    bool moveToFrame(int frame) override;
    void paint(QPainter *painter) override;
    /// The next frame at which something is displayed; -1 if there is none, or if nothing is displayed now.
    int nextKeyFrame() override;
    bool isVisible() override;
    /// Shows nothing until the next seek.
    void resetHistory();

private:
    /// What paint() draws, bottom to top.
    struct Shown {
        const kel::KeyDisplayItem *current = nullptr; // null: none
        std::vector<const kel::KeyDisplayItem *> past;

        bool looksLike(const Shown &other) const;
    };

    void build();
    Shown shown() const;

    kel::KeyLog m_recording;
    const int m_totalFrames;
    const double m_scale;
    QSize m_canvas;
    kel::KeyOverlayStyle m_style;
    kel::KeyDisplayList m_list;
    int m_frame = 0;
    int m_entry = -1; // index of the entry that is shown, -1 for none
};
