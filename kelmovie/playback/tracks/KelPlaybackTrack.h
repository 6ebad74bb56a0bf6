#pragma once

#include <KelMovie/KelPlaybackRules.h>

#include <QObject>
#include <QString>

class KelPlaybackTrackManager;
class QPainter;

namespace kel
{
class RecordingTimeline;
}

/// One layer of a loaded recording: moves to a logic frame and paints what is visible there.
/// Owned by the manager, without a QObject parent. GUI thread only.
class KelPlaybackTrack : public QObject
{
    Q_OBJECT

public:
    KelPlaybackTrack(const QString &directory, KelPlaybackTrackManager *manager);
    ~KelPlaybackTrack() override;

    /// The times of the logic frames and the rules for showing them, to be set before the first seek. `timeline` must
    /// outlive the track. Without it, the track has an empty timeline and the default rules.
    virtual void setContext(const kel::RecordingTimeline &timeline, const KelPlaybackRules &rules);

    /// Moves the track to logic frame `frame`.
    virtual void seekToFrame(int frame) = 0;
    /// Like seekToFrame(). Returns false only if paint() will draw exactly what it drew before; true when unknown.
    virtual bool moveToFrame(int frame);
    /// Draws the layer for the current frame; a null painter does nothing.
    virtual void paint(QPainter *painter) = 0;
    /// The next logic frame at which the layer changes, -1 when there is none.
    virtual int nextKeyFrame() = 0;
    /// Whether the layer is to be shown.
    virtual bool isVisible();

    /// Empty while the track works. If it is not empty right after construction, the track is unusable.
    QString errorString() const { return m_errorString; }
    QString name() const { return m_name; }
    /// The track's own directory inside the recording.
    QString directory() const { return m_directory; }

protected:
    void setErrorString(const QString &text) { m_errorString = text; }
    void setName(const QString &name) { m_name = name; }
    const kel::RecordingTimeline &timeline() const { return *m_timeline; }
    const KelPlaybackRules &rules() const { return m_rules; }

private:
    QString m_errorString;
    QString m_name;
    QString m_directory;
    const kel::RecordingTimeline *m_timeline; // never null
    KelPlaybackRules m_rules;
};
