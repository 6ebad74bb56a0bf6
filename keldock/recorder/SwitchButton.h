#pragma once

#include "dockicon/Glyph.h"

#include <QPushButton>

/// A toolbar button that is on or off, as its glyph, color and tooltip show. GUI thread.
class SwitchButton : public QPushButton
{
    Q_OBJECT

public:
    struct Face {
        KelDockIcon::Glyph glyph;
        QString toolTip; ///< the state, and what a click does
    };

    SwitchButton(const QString &name, const Face &on, const Face &off, QWidget *parent);

    /// Does not emit switched().
    void setOn(bool on);
    /// Disables the button; the tooltip gives the reason.
    void lock(const QString &reason);
    void unlock();

signals:
    /// The user clicked.
    void switched(bool on);

private:
    void showFace();

    const Face m_on;
    const Face m_off;
    QString m_lockReason;
};
