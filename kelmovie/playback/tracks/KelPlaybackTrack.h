#pragma once

#include <QObject>
#include <QString>

class KelPlaybackTrackManager;
class QPainter;

/// One layer of a loaded recording: brings itself to a logic frame and paints what that frame shows.
/// Owned by the manager, without a QObject parent. GUI thread only.
class KelPlaybackTrack : public QObject
{
    Q_OBJECT

public:
    KelPlaybackTrack(const QString &directory, KelPlaybackTrackManager *manager);
    ~KelPlaybackTrack() override;

    /// Brings the track's state to logic frame `frame`.
    virtual void seekToFrame(int frame) = 0;
    /// seekToFrame(). False only when paint() draws exactly what it drew before: a track that cannot tell says true.
    virtual bool moveToFrame(int frame);
    /// Draws the layer for the current frame; a null painter does nothing.
    virtual void paint(QPainter *painter) = 0;
    /// The next logic frame at which the picture changes, -1 when there is none.
    virtual int nextKeyFrame() = 0;
    /// Whether the layer is to be shown.
    virtual bool isVisible();

    /// Empty while the track works. Not empty right after construction: the track is unusable.
    QString errorString() const { return m_errorString; }
    QString name() const { return m_name; }
    /// The track's own directory inside the recording.
    QString directory() const { return m_directory; }

protected:
    void setErrorString(const QString &text) { m_errorString = text; }
    void setName(const QString &name) { m_name = name; }

private:
    QString m_errorString;
    QString m_name;
    QString m_directory;
};
