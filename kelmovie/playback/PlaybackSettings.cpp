#include "playback/PlaybackSettings.h"

#include "playback/keys/KelPlaybackKeyboardTrack.h"
#include "playback/mouse/KelPlaybackMouseTrack.h"
#include "playback/tracks/KelPlaybackCountdownTrack.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"

#include <KelMovie/KelMovieConfig.h>

#include <QGuiApplication>

#include <algorithm>

namespace kel
{

namespace
{

constexpr int kMaxFontSizePx = 400;
constexpr int kMinHistoryFontSizePx = 8;
constexpr int kMaxContinueChar = 200; // each further character stores another copy of the text
constexpr int kMaxSeconds = 24 * 60 * 60;
constexpr int kMaxPercent = 1000;
constexpr double kUnscaledMouseSize = 15.0; // the setting at which effects have their natural size

double factor(int percent)
{
    return std::clamp(percent, 0, kMaxPercent) / 100.0;
}

QColor validColor(const QColor &color, const QColor &fallback)
{
    return color.isValid() ? color : fallback;
}

KeyOverlayStyle keyOverlayStyle(const KelMovieConfig &config)
{
    KeyOverlayStyle style;
    style.font = config.playbackKeyboardFont;
    if (style.font.family().isEmpty()) // the default, created before the application had a font
        style.font.setFamily(QGuiApplication::font().family());
    style.fontSizePx = std::clamp(config.playbackKeyboardFontSizePx, 1, kMaxFontSizePx);
    // The setting is the difference to the font size; the result stays readable.
    style.historyFontSizePx =
        std::clamp(style.fontSizePx - std::clamp(config.playbackKeyboardHistoryFontSize, 0, kMaxFontSizePx),
                   std::min(kMinHistoryFontSizePx, style.fontSizePx), style.fontSizePx);
    style.fontColor = validColor(config.playbackKeyboardFontColor, style.fontColor);
    style.bgColor = validColor(config.playbackKeyboardBgColor, style.bgColor);
    style.display.keepTimeSeconds = std::clamp(config.playbackKeyboardKeepTime, 0, kMaxSeconds);
    style.display.maxHistoryCount = std::max(config.playbackKeyboardMaxHistoryCount, 0);
    style.display.maxContinueChar = std::clamp(config.playbackKeyboardMaxContinueChar, 1, kMaxContinueChar);
    style.displayPos = config.playbackKeyboardDisplayPos;
    style.display.shownTypes = config.playbackKeyboardShowKeyType;
    return style;
}

void applyTo(KelPlaybackMouseTrack &track, const KelMovieConfig &config, double pixelRatio)
{
    track.setEnabled(config.playbackMouseEnable);
    track.setShownButtons(config.playbackMouseShowActionButton);
    track.setShowWheel(config.playbackMouseShowWheel);
    track.setReplaceSameButton(config.playbackMouseReplaceEffects);
    track.setEffectScale(pixelRatio * config.playbackMouseSize / kUnscaledMouseSize);
    track.setClickType(config.playbackMouseClickEffect);
    track.setWheelType(config.playbackMouseWheelEffect);
    track.setEffectColor(config.playbackMouseColor);
}

void applyTo(KelPlaybackVoiceTrack &track, const KelMovieConfig &config)
{
    track.setSystemAudioEnabled(config.playbackAudioSystemEnabled);
    track.setSystemAudioMuted(config.playbackAudioSystemMuted);
    track.setSystemAudioVolume(factor(config.playbackAudioSystemVolume));
    track.setSystemAudioGain(factor(config.playbackAudioSystemGain));
    track.setMicrophoneEnabled(config.playbackAudioMicrophoneEnabled);
    track.setMicrophoneMuted(config.playbackAudioMicrophoneMuted);
    track.setMicrophoneVolume(factor(config.playbackAudioMicrophoneVolume));
    track.setMicrophoneGain(factor(config.playbackAudioMicrophoneGain));
}

void applyTo(KelPlaybackCountdownTrack &track, const KelMovieConfig &config)
{
    track.setEnabled(config.playbackProgressEnable);
    track.setDisplayMode(config.playbackProgressDisplayMode);
    track.setBarColors(config.playbackProgressFgColor, config.playbackProgressBgColor);
    // One setting for both display modes: the bar is thinner than the text of the box is high.
    const int size = std::clamp(config.playbackProgressSize, 1, kMaxFontSizePx);
    track.setFontSize(size);
    track.setBarHeight(std::max(1, size * 3 / 8));
    track.setCornerRadius(std::clamp(config.playbackProgressRound, 0, kMaxFontSizePx));
    track.setBarInterval(std::clamp(config.playbackProgressGapTime, 0, kMaxSeconds * 1000));
}

} // namespace

void applyPlaybackSettings(const KelMovieConfig &config, double pixelRatio, KelPlaybackTrack &track)
{
    if (auto *mouse = qobject_cast<KelPlaybackMouseTrack *>(&track))
        applyTo(*mouse, config, pixelRatio);
    else if (auto *keyboard = qobject_cast<KelPlaybackKeyboardTrack *>(&track))
        keyboard->setStyle(keyOverlayStyle(config));
    else if (auto *voice = qobject_cast<KelPlaybackVoiceTrack *>(&track))
        applyTo(*voice, config);
    else if (auto *countdown = qobject_cast<KelPlaybackCountdownTrack *>(&track))
        applyTo(*countdown, config);
}

} // namespace kel
