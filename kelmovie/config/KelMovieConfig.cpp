#include "config/KelMovieConfig.h"

#include "config/KelConfigIO.h"

KelMovieConfig gKelMovieConfig;
KelConfigIO *gKelMovieConfigIO = nullptr;

namespace
{
void bindProgress(KelConfigIO *io, KelMovieConfig &config)
{
    io->bindBool(QStringLiteral("KelMovie.playback.progress.enable"), &config.playbackProgressEnable);
    io->bindInt(QStringLiteral("KelMovie.playback.progress.displayMode"), &config.playbackProgressDisplayMode);
    io->bindColor(QStringLiteral("KelMovie.playback.progress.fgColor"), &config.playbackProgressFgColor);
    io->bindColor(QStringLiteral("KelMovie.playback.progress.bgColor"), &config.playbackProgressBgColor);
    io->bindInt(QStringLiteral("KelMovie.playback.progress.size"), &config.playbackProgressSize);
    io->bindInt(QStringLiteral("KelMovie.playback.progress.round"), &config.playbackProgressRound);
    io->bindInt(QStringLiteral("KelMovie.playback.progress.gapTime"), &config.playbackProgressGapTime);
}

void bindMouse(KelConfigIO *io, KelMovieConfig &config)
{
    io->bindBool(QStringLiteral("KelMovie.playback.mouse.enable"), &config.playbackMouseEnable);
    io->bindInt(QStringLiteral("KelMovie.playback.mouse.showActionButton"), &config.playbackMouseShowActionButton);
    io->bindBool(QStringLiteral("KelMovie.playback.mouse.showWheel"), &config.playbackMouseShowWheel);
    io->bindColor(QStringLiteral("KelMovie.playback.mouse.color"), &config.playbackMouseColor);
    io->bindInt(QStringLiteral("KelMovie.playback.mouse.size"), &config.playbackMouseSize);
}

void bindKeyboard(KelConfigIO *io, KelMovieConfig &config)
{
    io->bindInt(QStringLiteral("KelMovie.playback.keyboard.showKeyType"), &config.playbackKeyboardShowKeyType);
    io->bindInt(QStringLiteral("KelMovie.playback.keyboard.maxContinueChar"), &config.playbackKeyboardMaxContinueChar);
    io->bindInt(QStringLiteral("KelMovie.playback.keyboard.keepTime"), &config.playbackKeyboardKeepTime);
    io->bindInt(QStringLiteral("KelMovie.playback.keyboard.displayPos"), &config.playbackKeyboardDisplayPos);
    io->bindInt(QStringLiteral("KelMovie.playback.keyboard.fontSizePx"), &config.playbackKeyboardFontSizePx);
    io->bindColor(QStringLiteral("KelMovie.playback.keyboard.fontColor"), &config.playbackKeyboardFontColor);
    io->bindColor(QStringLiteral("KelMovie.playback.keyboard.bgColor"), &config.playbackKeyboardBgColor);
    io->bindInt(QStringLiteral("KelMovie.playback.keyboard.historyFontSize"), &config.playbackKeyboardHistoryFontSize);
    io->bindInt(QStringLiteral("KelMovie.playback.keyboard.maxHistoryCount"), &config.playbackKeyboardMaxHistoryCount);
    io->bindFont(QStringLiteral("KelMovie.playback.keyboard.font"), &config.playbackKeyboardFont);
}

void bindAudio(KelConfigIO *io, KelMovieConfig &config)
{
    io->bindInt(QStringLiteral("KelMovie.playback.audio.system.volume"), &config.playbackAudioSystemVolume);
    io->bindBool(QStringLiteral("KelMovie.playback.audio.system.muted"), &config.playbackAudioSystemMuted);
    io->bindBool(QStringLiteral("KelMovie.playback.audio.system.enabled"), &config.playbackAudioSystemEnabled);
    io->bindInt(QStringLiteral("KelMovie.playback.audio.system.gain"), &config.playbackAudioSystemGain);
    io->bindInt(QStringLiteral("KelMovie.playback.audio.microphone.volume"), &config.playbackAudioMicrophoneVolume);
    io->bindBool(QStringLiteral("KelMovie.playback.audio.microphone.muted"), &config.playbackAudioMicrophoneMuted);
    io->bindBool(QStringLiteral("KelMovie.playback.audio.microphone.enabled"), &config.playbackAudioMicrophoneEnabled);
    io->bindInt(QStringLiteral("KelMovie.playback.audio.microphone.gain"), &config.playbackAudioMicrophoneGain);
}

void bindRecord(KelConfigIO *io, KelMovieConfig &config)
{
    io->bindInt(QStringLiteral("KelMovie.record.delay"), &config.recordDelay);
    io->bindInt(QStringLiteral("KelMovie.record.fps"), &config.recordFps);
    io->bindBool(QStringLiteral("KelMovie.record.keyboard"), &config.recordKeyboard);
    io->bindBool(QStringLiteral("KelMovie.record.mouse"), &config.recordMouse);
    io->bindBool(QStringLiteral("KelMovie.record.recordSystemAudio"), &config.recordRecordSystemAudio);
    io->bindBool(QStringLiteral("KelMovie.record.recordMicrophone"), &config.recordRecordMicrophone);
    io->bindBool(QStringLiteral("KelMovie.record.dontShowRecordingWarning"), &config.recordDontShowRecordingWarning);
    io->bindInt(QStringLiteral("KelMovie.record.recordToolbarDisplayType"), &config.recordRecordToolbarDisplayType);
    io->bindBool(QStringLiteral("KelMovie.record.enableHardwareAcceleration"),
                 &config.recordEnableHardwareAcceleration);
}
} // namespace

void KelMovieConfigInit(KelConfigIO *io)
{
    gKelMovieConfigIO = io;
    if (!io)
        return;
    // Hosts rely on this order.
    bindProgress(io, gKelMovieConfig);
    bindMouse(io, gKelMovieConfig);
    bindKeyboard(io, gKelMovieConfig);
    io->bindInt(QStringLiteral("KelMovie.playback.encodeFormat"), &gKelMovieConfig.playbackEncodeFormat);
    bindAudio(io, gKelMovieConfig);
    bindRecord(io, gKelMovieConfig);
    io->bindInt(QStringLiteral("KelMovie.encode.gif.playLoop"), &gKelMovieConfig.encodeGifPlayLoop);
    io->bindBool(QStringLiteral("KelMovie.encode.exitRecordAfterEncode"), &gKelMovieConfig.encodeExitRecordAfterEncode);
}

QString KelMovieFormatSuffix()
{
    switch (gKelMovieConfig.playbackEncodeFormat) {
    case 0:
        return QStringLiteral("mp4");
    case 2:
        return QStringLiteral("apng");
    case 3:
        return QStringLiteral("webp");
    default:
        return QStringLiteral("gif");
    }
}

int KelMovieExportQuality(int balanced)
{
    constexpr int small = 60;
    constexpr int best = 100;
    switch (gKelMovieConfig.saveQuality) {
    case 0:
        return small;
    case 2:
        return best;
    default:
        return balanced;
    }
}
