#include "play/FullScreenControls.h"

#include <QBoxLayout>
#include <QEvent>
#include <QWidget>

namespace
{

constexpr int kRestMs = 2500;

} // namespace

FullScreenControls::FullScreenControls(QWidget *page, QBoxLayout *layout, QWidget *picture, QWidget *controls)
    : QObject(page)
    , m_page(page)
    , m_layout(layout)
    , m_picture(picture)
    , m_controls(controls)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(kRestMs);
    connect(&m_rest, &QTimer::timeout, this, [this] {
        // Whoever works on the controls, by pointer or by keys, keeps them.
        if (m_picture->underMouse() && !m_controls->isAncestorOf(m_page->window()->focusWidget()))
            setShown(false);
    });
    picture->setMouseTracking(true);
    picture->installEventFilter(this);
    page->installEventFilter(this);
}

void FullScreenControls::setActive(bool on)
{
    if (on == m_isActive)
        return;
    m_isActive = on;
    if (on)
        m_layout->removeWidget(m_controls);
    else
        m_layout->addWidget(m_controls);
    setShown(true);
    place();
}

bool FullScreenControls::eventFilter(QObject *watched, QEvent *event)
{
    if (m_isActive && watched == m_picture && (event->type() == QEvent::MouseMove || event->type() == QEvent::KeyPress))
        setShown(true);
    if (watched == m_page && event->type() == QEvent::Resize)
        place();
    return QObject::eventFilter(watched, event);
}

void FullScreenControls::place()
{
    if (!m_isActive)
        return;
    const int height = m_controls->sizeHint().height();
    m_controls->setGeometry(0, m_page->height() - height, m_page->width(), height);
    m_controls->raise();
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
