#pragma once

#include <QImage>
#include <QWidget>

class KelPlaybackTrackManager;

/// Shows the composed picture of a recording: as large as it was on the screen where there is room, otherwise smaller,
/// and in full screen as large as there is room. The picture is composed once for each change and scaled once for each
/// size; uncovering the window costs neither.
class PlaybackCanvas : public QWidget
{
    Q_OBJECT

public:
    /// `manager` is not owned and must outlive the canvas.
    explicit PlaybackCanvas(KelPlaybackTrackManager *manager, QWidget *parent = nullptr);

    /// Whether the picture may become larger than it was on the screen.
    void setEnlarging(bool on);

    /// The present picture in its own pixels.
    QImage picture();
    /// Where the picture is in the widget.
    QRectF pictureRect() const;

    QSize sizeHint() const override;

public slots:
    /// The recording may show something else now.
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
    const QImage &scaledPicture(const QSize &pixels);

    KelPlaybackTrackManager *const m_manager;
    QImage m_picture;
    QImage m_scaled;        ///< of another size than the picture, or null
    quint64 m_revision = 0; ///< of the recording's picture in m_picture
    bool m_isEnlarging = false;
    bool m_showsFocus = false; ///< it came by the keyboard, and a keyboard's user has to see it
};
