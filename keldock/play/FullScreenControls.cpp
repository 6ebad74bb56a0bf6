#include "play/FullScreenControls.h"

#include <QBoxLayout>
#include <QEvent>
#include <QWidget>

namespace
{

constexpr int kRestMs = 2500;

} // namespace

FullScreenControls::FullScreenControls(QWidget *page, QBoxLayout *layout, QWidget *canvas, QWidget *controls)
    : QObject(page)
    , m_page(page)
    , m_layout(layout)
    , m_canvas(canvas)
    , m_controls(controls)
{
    m_restTimer.setSingleShot(true);
    m_restTimer.setInterval(kRestMs);
    connect(&m_restTimer, &QTimer::timeout, this, [this] {
        // The controls stay while the user operates them with the pointer or the keyboard.
        if (m_canvas->underMouse() && !m_controls->isAncestorOf(m_page->window()->focusWidget()))
            setShown(false);
    });
    canvas->setMouseTracking(true);
    canvas->installEventFilter(this);
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
    if (m_isActive && watched == m_canvas && (event->type() == QEvent::MouseMove || event->type() == QEvent::KeyPress))
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
        m_canvas->unsetCursor();
    else
        m_canvas->setCursor(Qt::BlankCursor);
    if (shown && m_isActive)
        m_restTimer.start();
    else
        m_restTimer.stop();
}
