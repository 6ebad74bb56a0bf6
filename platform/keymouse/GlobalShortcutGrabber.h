#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace kel
{

/// Key combinations that reach this process regardless of which program has the focus; one implementation per operating
/// system. A combination is encoded as in QKeySequence: a Qt::Key and its modifiers in one number. GUI thread.
class GlobalShortcutGrabber : public QObject
{
    Q_OBJECT

public:
    /// The implementation for this operating system. Never null.
    static std::unique_ptr<GlobalShortcutGrabber> create();

    /// Returns an empty string on success, otherwise a translated text that says why the combination is not available.
    virtual QString grab(int combination) = 0;
    virtual void release(int combination) = 0;

signals:
    void pressed(int combination);
};

} // namespace kel
