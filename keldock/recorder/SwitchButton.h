#pragma once

#include "dockicon/Glyph.h"

#include <QPushButton>

/// A button of the toolbar that is on or off, shown by glyph and colour and told by its tooltip. GUI thread.
class SwitchButton : public QPushButton
{
    Q_OBJECT

public:
    struct Face {
        KelDockIcon::Glyph glyph;
        QString text; ///< what is the case, and what a click does
    };

    SwitchButton(const QString &name, const Face &on, const Face &off, QWidget *parent);

    /// No signal.
    void setOn(bool on);
    /// Off limits for the moment; the tooltip says why.
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
