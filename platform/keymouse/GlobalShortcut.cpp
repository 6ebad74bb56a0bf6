#include "keymouse/GlobalShortcut.h"

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

QString GlobalShortcutGrabber::trigger(int combination) const
{
    return QKeySequence(combination).toString(QKeySequence::NativeText);
}

GlobalShortcut::GlobalShortcut(const ShortcutPurpose &purpose, QObject *parent)
    : QObject(parent)
    , m_grabber(sharedGrabber())
    , m_purpose(purpose)
{
    connect(m_grabber.get(), &GlobalShortcutGrabber::pressed, this, [this](int combination) {
        if (!m_keys.isEmpty() && combination == m_keys[0])
            emit activated();
    });
    connect(m_grabber.get(), &GlobalShortcutGrabber::triggersChanged, this, [this](const QString &error) {
        if (m_keys.isEmpty())
            return;
        m_error = error;
        emit changed();
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
    m_error = m_grabber->grab(keys[0], m_purpose);
    if (m_error.isEmpty())
        m_keys = QKeySequence(keys[0]);
    return m_error.isEmpty();
}

QString GlobalShortcut::problem() const
{
    return m_grabber->problem();
}

QString GlobalShortcut::trigger() const
{
    return m_keys.isEmpty() ? QString() : m_grabber->trigger(m_keys[0]);
}

void GlobalShortcut::release()
{
    if (!m_keys.isEmpty())
        m_grabber->release(m_keys[0]);
    m_keys = QKeySequence();
}

} // namespace kel
