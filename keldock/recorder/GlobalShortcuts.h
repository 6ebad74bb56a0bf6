#pragma once

#include "keymouse/GlobalShortcut.h"

#include <QObject>
#include <QString>

struct DockSettings;

/// The keys that record, pause and stop whichever program has the focus. GUI thread.
class GlobalShortcuts : public QObject
{
    Q_OBJECT

public:
    explicit GlobalShortcuts(QObject *parent = nullptr);

    /// Takes the keys of the settings. Answers which of them cannot be had and why, a line each; empty when all work.
    QString apply(const DockSettings &settings);
    /// Empty when they do not work.
    QKeySequence stopKeys() const { return m_stop.keys(); }
    /// Lets go of all.
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
