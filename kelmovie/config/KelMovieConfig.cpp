#include "config/KelMovieConfig.h"

#include "config/KelConfigIO.h"
#include "config/KelMovieConfigKeys.h"

KelMovieConfig gKelMovieConfig;
KelConfigIO *gKelMovieConfigIO = nullptr;

using namespace KelMovieConfigKeys;

namespace
{
void bindProgress(KelConfigIO *io, KelMovieConfig &config)
{
    io->bindBool(kPlaybackProgressEnable, &config.playbackProgressEnable);
    io->bindInt(kPlaybackProgressDisplayMode, &config.playbackProgressDisplayMode);
    io->bindColor(kPlaybackProgressFgColor, &config.playbackProgressFgColor);
    io->bindColor(kPlaybackProgressBgColor, &config.playbackProgressBgColor);
    io->bindInt(kPlaybackProgressSize, &config.playbackProgressSize);
    io->bindInt(kPlaybackProgressRound, &config.playbackProgressRound);
    io->bindInt(kPlaybackProgressGapTime, &config.playbackProgressGapTime);
}

void bindMouse(KelConfigIO *io, KelMovieConfig &config)
{
    io->bindBool(kPlaybackMouseEnable, &config.playbackMouseEnable);
    io->bindInt(kPlaybackMouseShowActionButton, &config.playbackMouseShowActionButton);
    io->bindBool(kPlaybackMouseShowWheel, &config.playbackMouseShowWheel);
    io->bindColor(kPlaybackMouseColor, &config.playbackMouseColor);
    io->bindInt(kPlaybackMouseSize, &config.playbackMouseSize);
}

void bindKeyboard(KelConfigIO *io, KelMovieConfig &config)
{
    io->bindInt(kPlaybackKeyboardShowKeyType, &config.playbackKeyboardShowKeyType);
    io->bindInt(kPlaybackKeyboardMaxContinueChar, &config.playbackKeyboardMaxContinueChar);
    io->bindInt(kPlaybackKeyboardKeepTime, &config.playbackKeyboardKeepTime);
    io->bindInt(kPlaybackKeyboardDisplayPos, &config.playbackKeyboardDisplayPos);
    io->bindInt(kPlaybackKeyboardFontSizePx, &config.playbackKeyboardFontSizePx);
    io->bindColor(kPlaybackKeyboardFontColor, &config.playbackKeyboardFontColor);
    io->bindColor(kPlaybackKeyboardBgColor, &config.playbackKeyboardBgColor);
    io->bindInt(kPlaybackKeyboardHistoryFontSize, &config.playbackKeyboardHistoryFontSize);
    io->bindInt(kPlaybackKeyboardMaxHistoryCount, &config.playbackKeyboardMaxHistoryCount);
    io->bindFont(kPlaybackKeyboardFont, &config.playbackKeyboardFont);
}

void bindAudio(KelConfigIO *io, KelMovieConfig &config)
{
    io->bindInt(kPlaybackAudioSystemVolume, &config.playbackAudioSystemVolume);
    io->bindBool(kPlaybackAudioSystemMuted, &config.playbackAudioSystemMuted);
    io->bindBool(kPlaybackAudioSystemEnabled, &config.playbackAudioSystemEnabled);
    io->bindInt(kPlaybackAudioSystemGain, &config.playbackAudioSystemGain);
    io->bindInt(kPlaybackAudioMicrophoneVolume, &config.playbackAudioMicrophoneVolume);
    io->bindBool(kPlaybackAudioMicrophoneMuted, &config.playbackAudioMicrophoneMuted);
    io->bindBool(kPlaybackAudioMicrophoneEnabled, &config.playbackAudioMicrophoneEnabled);
    io->bindInt(kPlaybackAudioMicrophoneGain, &config.playbackAudioMicrophoneGain);
}

void bindRecord(KelConfigIO *io, KelMovieConfig &config)
{
    io->bindInt(kRecordDelay, &config.recordDelay);
    io->bindInt(kRecordFps, &config.recordFps);
    io->bindBool(kRecordKeyboard, &config.recordKeyboard);
    io->bindBool(kRecordMouse, &config.recordMouse);
    io->bindBool(kRecordRecordSystemAudio, &config.recordRecordSystemAudio);
    io->bindBool(kRecordRecordMicrophone, &config.recordRecordMicrophone);
    io->bindBool(kRecordDontShowRecordingWarning, &config.recordDontShowRecordingWarning);
    io->bindInt(kRecordRecordToolbarDisplayType, &config.recordRecordToolbarDisplayType);
    io->bindBool(kRecordEnableHardwareAcceleration, &config.recordEnableHardwareAcceleration);
}
} // namespace

void KelMovieConfigInit(KelConfigIO *io)
{
    gKelMovieConfigIO = io;
    if (!io)
        return;
    // The order is part of the interface: hosts rely on it.
    bindProgress(io, gKelMovieConfig);
    bindMouse(io, gKelMovieConfig);
    bindKeyboard(io, gKelMovieConfig);
    io->bindInt(kPlaybackEncodeFormat, &gKelMovieConfig.playbackEncodeFormat);
    bindAudio(io, gKelMovieConfig);
    bindRecord(io, gKelMovieConfig);
    io->bindInt(kEncodeGifPlayLoop, &gKelMovieConfig.encodeGifPlayLoop);
    io->bindBool(kEncodeExitRecordAfterEncode, &gKelMovieConfig.encodeExitRecordAfterEncode);
}

void KelMovieSaveExitRecordAfterEncode(bool on)
{
    gKelMovieConfig.encodeExitRecordAfterEncode = on;
    if (gKelMovieConfigIO)
        gKelMovieConfigIO->saveBool(kEncodeExitRecordAfterEncode, on);
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
    constexpr int kSmall = 60;
    constexpr int kBest = 100;
    switch (gKelMovieConfig.saveQuality) {
    case 0:
        return kSmall;
    case 2:
        return kBest;
    default:
        return balanced;
    }
}
