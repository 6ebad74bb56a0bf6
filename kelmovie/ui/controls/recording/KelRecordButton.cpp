#include "ui/controls/recording/KelRecordButton.h"

#include "ui/controls/GlyphButton.h"

using namespace kel;

using KelDockIcon::Glyph;

KelRecordButton::KelRecordButton(QWidget *parent)
    : QPushButton(parent)
{
    setObjectName(QStringLiteral("PlayPauseButton"));
    GlyphButton::prepare(this);
    GlyphButton::show(this, Glyph::Record, tr("Start recording"));
    connect(this, &QPushButton::clicked, this, [this] {
        const bool recording = !isRecording();
        setRecording(recording);
        emit sigRecordStateChanged(recording);
    });
}

bool KelRecordButton::isRecording() const
{
    return !GlyphButton::shows(this, Glyph::Record);
}

void KelRecordButton::setRecording(bool recording)
{
    if (isRecording() == recording)
        return;
    if (recording)
        GlyphButton::show(this, Glyph::Stop, tr("Stop recording"));
    else
        GlyphButton::show(this, Glyph::Record, tr("Start recording"));
}
