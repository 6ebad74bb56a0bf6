#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace kel
{

/// What an operating system provides: key combinations that reach this process whichever program has the focus.
/// A combination is what QKeySequence holds: a Qt::Key and its modifiers in one number. GUI thread.
class GlobalShortcutGrabber : public QObject
{
    Q_OBJECT

public:
    /// The implementation for the operating system that this is built for. Never null.
    static std::unique_ptr<GlobalShortcutGrabber> create();

    /// Empty on success, else why the combination cannot be had, for a person to read.
    virtual QString grab(int combination) = 0;
    virtual void release(int combination) = 0;

signals:
    void pressed(int combination);
};

} // namespace kel
