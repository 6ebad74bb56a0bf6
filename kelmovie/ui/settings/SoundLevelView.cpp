#include "ui/settings/SoundLevelView.h"

#include "dockicon/KelDockIcon.h"
#include "style/KelStyleTheme.h"
#include "ui/settings/SoundLevelMeter.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace kel
{

namespace
{

constexpr int kIntervalMs = 33;
constexpr qint64 kSilentAfterMs = 3000;
constexpr float kAudible = 0.001F; // -60 dB

} // namespace

SoundLevelView::SoundLevelView(EDataFlow flow, const Texts &texts, QWidget *parent)
    : QWidget(parent)
    , m_texts(texts)
    , m_meter(new SoundLevelMeter(this))
    , m_icon(new QLabel(this))
    , m_note(new QLabel(this))
    , m_monitor(new SoundLevelMonitor(flow))
{
    m_meter->setAccessibleName(texts.name);
    m_meter->setToolTip(texts.name);
    m_icon->setObjectName(QStringLiteral("NoteIcon"));
    m_note->setObjectName(QStringLiteral("Note"));
    KelDockIcon::family(); // the font must be loaded before the style sheet names it
    auto *const note = new QHBoxLayout;
    note->addWidget(m_icon);
    note->addWidget(m_note, 1);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_meter);
    layout->addLayout(note);
    m_timer.setInterval(kIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &SoundLevelView::refresh);
    m_clock.start();
    setNote({}, false);
}

SoundLevelView::~SoundLevelView()
{
    m_monitor->endLater();
}

void SoundLevelView::setPlaybackLevel(const PlaybackLevel &level)
{
    m_playbackLevel = level;
    m_lastSoundMs = m_clock.elapsed();
    m_monitor->setListening(isVisible() && !m_playbackLevel);
}

QString SoundLevelView::note() const
{
    return m_note->text();
}

void SoundLevelView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_lastSoundMs = m_clock.elapsed();
    m_monitor->setListening(!m_playbackLevel);
    m_timer.start();
    refresh();
}

void SoundLevelView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_timer.stop();
    m_monitor->setListening(false);
}

void SoundLevelView::refresh()
{
    const qint64 nowMs = m_clock.elapsed();
    if (!m_playbackLevel) {
        showDevice(nowMs);
        return;
    }
    const std::optional<float> level = m_playbackLevel();
    m_meter->setPeak(level.value_or(0), nowMs);
    setNote(level ? QString() : m_texts.absent, false);
}

void SoundLevelView::showDevice(qint64 nowMs)
{
    const SoundLevelMonitor::State state = m_monitor->state();
    const float peak = m_monitor->takePeak();
    if (peak >= kAudible || state != SoundLevelMonitor::State::Listening)
        m_lastSoundMs = nowMs;
    m_meter->setPeak(peak, nowMs);
    if (state == SoundLevelMonitor::State::NoDevice)
        setNote(m_texts.missing, true);
    else if (nowMs - m_lastSoundMs >= kSilentAfterMs)
        setNote(m_texts.silent, true);
    else if (state == SoundLevelMonitor::State::Listening)
        setNote({}, false);
}

void SoundLevelView::setNote(const QString &text, bool isWarning)
{
    m_icon->setText(isWarning ? KelDockIcon::text(KelDockIcon::Glyph::Warning) : QString());
    m_icon->setVisible(isWarning);
    m_note->setText(text);
}

} // namespace kel
