#include "ui/controls/recording/KelRecordPauseButton.h"

#include "ui/controls/GlyphButton.h"

using namespace kel;

using KelDockIcon::Glyph;

KelRecordPauseButton::KelRecordPauseButton(QWidget *parent)
    : QPushButton(parent)
{
    setObjectName(QStringLiteral("KelRecordPauseButton"));
    GlyphButton::prepare(this);
    GlyphButton::show(this, Glyph::Pause, tr("Pause recording"));
    connect(this, &QPushButton::clicked, this, [this] {
        const bool pause = !isPause();
        setPause(pause);
        emit sigPauseStateChanged(pause);
    });
}

bool KelRecordPauseButton::isPause() const
{
    return !GlyphButton::shows(this, Glyph::Pause);
}

void KelRecordPauseButton::setPause(bool pause)
{
    if (isPause() == pause)
        return;
    if (pause)
        GlyphButton::show(this, Glyph::Play, tr("Resume recording"));
    else
        GlyphButton::show(this, Glyph::Pause, tr("Pause recording"));
}
