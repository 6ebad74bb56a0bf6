#pragma once

#include <QString>

/// The keys under which the host's store keeps the fields of KelMovieConfig: kRecordFps is that of recordFps. Hosts
/// that save a setting themselves pass them to KelConfigIO.
namespace KelMovieConfigKeys
{

/// The key of the field of the same name.
/// @{
const QLatin1String kPlaybackProgressEnable{"KelMovie.playback.progress.enable"};
const QLatin1String kPlaybackProgressDisplayMode{"KelMovie.playback.progress.displayMode"};
const QLatin1String kPlaybackProgressFgColor{"KelMovie.playback.progress.fgColor"};
const QLatin1String kPlaybackProgressBgColor{"KelMovie.playback.progress.bgColor"};
const QLatin1String kPlaybackProgressSize{"KelMovie.playback.progress.size"};
const QLatin1String kPlaybackProgressRound{"KelMovie.playback.progress.round"};
const QLatin1String kPlaybackProgressGapTime{"KelMovie.playback.progress.gapTime"};
const QLatin1String kPlaybackMouseEnable{"KelMovie.playback.mouse.enable"};
const QLatin1String kPlaybackMouseShowActionButton{"KelMovie.playback.mouse.showActionButton"};
const QLatin1String kPlaybackMouseShowWheel{"KelMovie.playback.mouse.showWheel"};
const QLatin1String kPlaybackMouseColor{"KelMovie.playback.mouse.color"};
const QLatin1String kPlaybackMouseSize{"KelMovie.playback.mouse.size"};
const QLatin1String kPlaybackKeyboardShowKeyType{"KelMovie.playback.keyboard.showKeyType"};
const QLatin1String kPlaybackKeyboardMaxContinueChar{"KelMovie.playback.keyboard.maxContinueChar"};
const QLatin1String kPlaybackKeyboardKeepTime{"KelMovie.playback.keyboard.keepTime"};
const QLatin1String kPlaybackKeyboardDisplayPos{"KelMovie.playback.keyboard.displayPos"};
const QLatin1String kPlaybackKeyboardFontSizePx{"KelMovie.playback.keyboard.fontSizePx"};
const QLatin1String kPlaybackKeyboardFontColor{"KelMovie.playback.keyboard.fontColor"};
const QLatin1String kPlaybackKeyboardBgColor{"KelMovie.playback.keyboard.bgColor"};
const QLatin1String kPlaybackKeyboardHistoryFontSize{"KelMovie.playback.keyboard.historyFontSize"};
const QLatin1String kPlaybackKeyboardMaxHistoryCount{"KelMovie.playback.keyboard.maxHistoryCount"};
const QLatin1String kPlaybackKeyboardFont{"KelMovie.playback.keyboard.font"};
const QLatin1String kPlaybackAudioSystemVolume{"KelMovie.playback.audio.system.volume"};
const QLatin1String kPlaybackAudioSystemMuted{"KelMovie.playback.audio.system.muted"};
const QLatin1String kPlaybackAudioSystemEnabled{"KelMovie.playback.audio.system.enabled"};
const QLatin1String kPlaybackAudioSystemGain{"KelMovie.playback.audio.system.gain"};
const QLatin1String kPlaybackAudioMicrophoneVolume{"KelMovie.playback.audio.microphone.volume"};
const QLatin1String kPlaybackAudioMicrophoneMuted{"KelMovie.playback.audio.microphone.muted"};
const QLatin1String kPlaybackAudioMicrophoneEnabled{"KelMovie.playback.audio.microphone.enabled"};
const QLatin1String kPlaybackAudioMicrophoneGain{"KelMovie.playback.audio.microphone.gain"};
const QLatin1String kRecordDelay{"KelMovie.record.delay"};
const QLatin1String kRecordFps{"KelMovie.record.fps"};
const QLatin1String kRecordKeyboard{"KelMovie.record.keyboard"};
const QLatin1String kRecordMouse{"KelMovie.record.mouse"};
const QLatin1String kRecordRecordSystemAudio{"KelMovie.record.recordSystemAudio"};
const QLatin1String kRecordRecordMicrophone{"KelMovie.record.recordMicrophone"};
const QLatin1String kRecordDontShowRecordingWarning{"KelMovie.record.dontShowRecordingWarning"};
const QLatin1String kRecordRecordToolbarDisplayType{"KelMovie.record.recordToolbarDisplayType"};
const QLatin1String kRecordEnableHardwareAcceleration{"KelMovie.record.enableHardwareAcceleration"};
const QLatin1String kPlaybackEncodeFormat{"KelMovie.playback.encodeFormat"};
const QLatin1String kEncodeGifPlayLoop{"KelMovie.encode.gif.playLoop"};
const QLatin1String kEncodeExitRecordAfterEncode{"KelMovie.encode.exitRecordAfterEncode"};
/// @}

} // namespace KelMovieConfigKeys
