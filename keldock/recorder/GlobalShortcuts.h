#pragma once

#include "keymouse/GlobalShortcut.h"

#include <QKeySequence>
#include <QObject>
#include <QString>
#include <QVector>

struct DockSettings;

/// The shortcuts to record, pause and stop that work in every program. GUI thread.
class GlobalShortcuts : public QObject
{
    Q_OBJECT

public:
    explicit GlobalShortcuts(QObject *parent = nullptr);

    /// Registers the shortcuts of the settings. Returns one line for each that does not work; empty if all do.
    QString apply(const DockSettings &settings);
    /// What to press to stop, as text; empty if nothing does.
    QString stopKeys() const { return m_stop.trigger(); }
    /// The combinations that pause and stop.
    QVector<QKeySequence> controlKeys() const { return {m_pause.keys(), m_stop.keys()}; }
    /// Unregisters all shortcuts until the next apply().
    void suspend();

signals:
    void recordPressed();
    void pausePressed();
    void stopPressed();
    /// The desktop has answered later: stopKeys() may have changed. `problem` is new and for the user; empty if there
    /// is none.
    void changed(const QString &problem);

private:
    void report(const QString &problem);

    kel::GlobalShortcut m_record;
    kel::GlobalShortcut m_pause;
    kel::GlobalShortcut m_stop;
    QString m_reported;
};
