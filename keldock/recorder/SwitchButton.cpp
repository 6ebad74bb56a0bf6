#include "recorder/SwitchButton.h"

#include "dockicon/KelDockIcon.h"
#include "widgets/DockStyle.h"

SwitchButton::SwitchButton(const QString &name, const Face &on, const Face &off, QWidget *parent)
    : QPushButton(parent)
    , m_on(on)
    , m_off(off)
{
    setAccessibleName(name);
    setCheckable(true);
    setFlat(true);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    applyDockStyle(this, QStringLiteral("SwitchButton"));
    connect(this, &QPushButton::toggled, this, &SwitchButton::showFace);
    connect(this, &QPushButton::clicked, this, &SwitchButton::switched);
    showFace();
}

void SwitchButton::setOn(bool on)
{
    setChecked(on);
}

void SwitchButton::lock(const QString &reason)
{
    m_lockReason = reason;
    setEnabled(false);
    showFace();
}

void SwitchButton::unlock()
{
    m_lockReason.clear();
    setEnabled(true);
    showFace();
}

void SwitchButton::showFace()
{
    const Face &face = isChecked() ? m_on : m_off;
    setText(KelDockIcon::text(face.glyph));
    setToolTip(m_lockReason.isEmpty() ? face.toolTip : m_lockReason);
    setAccessibleDescription(toolTip());
}
