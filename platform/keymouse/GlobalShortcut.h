#pragma once

#include "keymouse/GlobalShortcutGrabber.h"

#include <QKeySequence>
#include <QObject>

#include <memory>

namespace kel
{

/// A key combination that works regardless of which program has the focus. GUI thread; needs a QGuiApplication.
class GlobalShortcut : public QObject
{
    Q_OBJECT

public:
    explicit GlobalShortcut(const ShortcutPurpose &purpose = {}, QObject *parent = nullptr);
    ~GlobalShortcut() override;

    /// Why no combination can be set at all; empty if some can. May wait two seconds for the desktop.
    QString problem() const;

    /// Replaces the combination by the first one of `keys`; an empty sequence removes it. False, with errorString(),
    /// when the combination is not available, for example because another program uses it; no combination is set then.
    /// A desktop that asks the user answers later, by changed().
    bool setKeys(const QKeySequence &keys);
    QKeySequence keys() const { return m_keys; }
    /// What the user has to press, as text: the desktop may choose other keys than keys(). Empty while nothing works.
    QString trigger() const;
    QString errorString() const { return m_error; }

signals:
    /// The combination was pressed. Emitted once per press, however long the keys are held.
    void activated();

    /// trigger() or errorString() has changed by itself.
    void changed();

private:
    void release();

    std::shared_ptr<GlobalShortcutGrabber> m_grabber; // shared by all shortcuts of the process
    const ShortcutPurpose m_purpose;
    QKeySequence m_keys;
    QString m_error;
};

} // namespace kel
