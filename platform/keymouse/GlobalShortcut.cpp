#include "keymouse/GlobalShortcut.h"

#include "keymouse/GlobalShortcutGrabber.h"

namespace kel
{

namespace
{

std::shared_ptr<GlobalShortcutGrabber> sharedGrabber()
{
    static std::weak_ptr<GlobalShortcutGrabber> shared;
    std::shared_ptr<GlobalShortcutGrabber> grabber = shared.lock();
    if (!grabber) {
        grabber = GlobalShortcutGrabber::create();
        shared = grabber;
    }
    return grabber;
}

} // namespace

GlobalShortcut::GlobalShortcut(QObject *parent)
    : QObject(parent)
    , m_grabber(sharedGrabber())
{
    connect(m_grabber.get(), &GlobalShortcutGrabber::pressed, this, [this](int combination) {
        if (!m_keys.isEmpty() && combination == m_keys[0])
            emit activated();
    });
}

GlobalShortcut::~GlobalShortcut()
{
    release();
}

bool GlobalShortcut::setKeys(const QKeySequence &keys)
{
    release();
    m_error.clear();
    if (keys.isEmpty())
        return true;
    m_error = m_grabber->grab(keys[0]);
    if (m_error.isEmpty())
        m_keys = QKeySequence(keys[0]);
    return m_error.isEmpty();
}

void GlobalShortcut::release()
{
    if (!m_keys.isEmpty())
        m_grabber->release(m_keys[0]);
    m_keys = QKeySequence();
}

} // namespace kel
