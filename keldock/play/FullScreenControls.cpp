#include "play/FullScreenControls.h"

#include <QEvent>
#include <QWidget>

namespace
{

constexpr int kRestMs = 2500;

} // namespace

FullScreenControls::FullScreenControls(QWidget *picture, QWidget *controls)
    : QObject(picture)
    , m_picture(picture)
    , m_controls(controls)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(kRestMs);
    connect(&m_rest, &QTimer::timeout, this, [this] {
        // Whoever works on the controls, by pointer or by keys, keeps them.
        if (m_picture->underMouse() && !m_controls->isAncestorOf(m_picture->window()->focusWidget()))
            setShown(false);
    });
    picture->setMouseTracking(true);
    picture->installEventFilter(this);
}

void FullScreenControls::setActive(bool on)
{
    m_isActive = on;
    setShown(true);
}

bool FullScreenControls::eventFilter(QObject *watched, QEvent *event)
{
    if (m_isActive && (event->type() == QEvent::MouseMove || event->type() == QEvent::KeyPress))
        setShown(true);
    return QObject::eventFilter(watched, event);
}

void FullScreenControls::setShown(bool shown)
{
    m_controls->setVisible(shown);
    if (shown)
        m_picture->unsetCursor();
    else
        m_picture->setCursor(Qt::BlankCursor);
    if (shown && m_isActive)
        m_rest.start();
    else
        m_rest.stop();
}
