#pragma once

#include "keymouse/GlobalShortcut.h"

#include <QKeySequence>
#include <QObject>
#include <QString>

struct DockSettings;

/// The shortcuts to record, pause and stop that work in every program. GUI thread.
class GlobalShortcuts : public QObject
{
    Q_OBJECT

public:
    explicit GlobalShortcuts(QObject *parent = nullptr);

    /// Registers the shortcuts of the settings. Returns one line for each that does not work; empty if all do.
    QString apply(const DockSettings &settings);
    /// The shortcut that stops; empty if it does not work.
    QKeySequence stopKeys() const { return m_stop.keys(); }
    /// Unregisters all shortcuts until the next apply().
    void suspend();

signals:
    void recordPressed();
    void pausePressed();
    void stopPressed();

private:
    kel::GlobalShortcut m_record;
    kel::GlobalShortcut m_pause;
    kel::GlobalShortcut m_stop;
};
