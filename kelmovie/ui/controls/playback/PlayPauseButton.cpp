#include "ui/controls/playback/PlayPauseButton.h"

#include "ui/controls/GlyphButton.h"

using namespace kel;

using KelDockIcon::Glyph;

PlayPauseButton::PlayPauseButton(QWidget *parent)
    : QPushButton(parent)
{
    setObjectName(QStringLiteral("PlayPauseButton"));
    GlyphButton::prepare(this);
    GlyphButton::show(this, Glyph::Play, tr("Play"));
    connect(this, &QPushButton::clicked, this, [this] {
        setPlay(!isPlay());
        emit sigPlay(isPlay());
    });
}

bool PlayPauseButton::isPlay() const
{
    return GlyphButton::shows(this, Glyph::Pause);
}

void PlayPauseButton::setPlay(bool play)
{
    if (isPlay() == play)
        return;
    if (play)
        GlyphButton::show(this, Glyph::Pause, tr("Pause"));
    else
        GlyphButton::show(this, Glyph::Play, tr("Play"));
}
