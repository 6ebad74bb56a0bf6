#pragma once

#include <QImage>
#include <QWidget>

class KelPlaybackTrackManager;

/// Shows the current frame of a recording, in its original size or scaled down to fit; when enlarging, scaled to fit in
/// any case. Caches the composed and the scaled frame, so that repainting is cheap. GUI thread.
class PlaybackCanvas : public QWidget
{
    Q_OBJECT

public:
    /// `manager` is not owned and must outlive the canvas.
    explicit PlaybackCanvas(KelPlaybackTrackManager *manager, QWidget *parent = nullptr);

    /// Whether the frame may be shown larger than its original size.
    void setEnlarging(bool on);

    /// The current frame in its original size, in physical pixels.
    QImage frame();
    /// Where the frame is shown in the widget.
    QRectF frameRect() const;

    QSize sizeHint() const override;

public slots:
    /// Repaints if the recording shows something else.
    void refresh();

signals:
    void clicked();
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    const QImage &scaledFrame(const QSize &pixels);

    KelPlaybackTrackManager *const m_manager;
    QImage m_frame;
    QImage m_scaled;        ///< null when the frame is shown in its original size
    quint64 m_revision = 0; ///< revision of m_frame, see KelPlaybackTrackManager::frameRevision()
    bool m_isEnlarging = false;
    bool m_showsFocus = false; ///< the focus came by the keyboard
};
