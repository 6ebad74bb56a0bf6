#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QColor>
#include <QFont>
#include <QString>

class KelConfigIO;

/// All settings of the module, always with their current values: read a field where it is used, on the GUI thread, and
/// keep no copies. Hosts access the struct as well, so the order of its fields is part of the interface.
///
/// KelMovieConfigKeys.h has the key of each persisted field in the host's store. playbackMouseClickEffect,
/// playbackMouseWheelEffect, playbackMouseReplaceEffects, saveQuality and the hostReserved fields have no key and are
/// never persisted.
struct KelMovieConfig {
    bool playbackMouseEnable = true;             ///< show the pointer and its effects
    int playbackMouseShowActionButton = 7;       ///< bit set: 1 left click, 2 right click, 4 middle click
    bool playbackMouseShowWheel = true;          ///< show wheel effects
    QColor playbackMouseColor{0x33, 0x88, 0xff}; ///< of the effects
    int playbackMouseSize = 15;                  ///< of the effects; 15 means 64 pixels at 96 dpi
    int playbackMouseClickEffect = 1;        ///< 0 none, 1 ray, 2 floral, 3 fireworks, 4 stars, 5 ripple, 6 pressing
    int playbackMouseWheelEffect = 1;        ///< 0 none, 1 arrow
    bool playbackMouseReplaceEffects = true; ///< a click ends the previous effect of the same button
    int playbackKeyboardShowKeyType = 14;    ///< bit set: 1 characters, 2 other keys, 4 modifiers, 8 combinations
    int playbackKeyboardMaxContinueChar = 5; ///< consecutive characters in one box
    int playbackKeyboardKeepTime = 2;        ///< seconds for which keys stay visible
    int playbackKeyboardDisplayPos = 2;      ///< at the bottom: 1 center, 2 left, 3 right
    int playbackKeyboardFontSizePx = 22;     ///< pixels at 96 dpi
    QColor playbackKeyboardFontColor{255, 255, 255, 255}; ///< of the text in the boxes
    QColor playbackKeyboardBgColor{0, 0, 0, 200};         ///< of the boxes
    int playbackKeyboardHistoryFontSize = 2;              ///< by how many pixels earlier boxes have a smaller font
    int playbackKeyboardMaxHistoryCount = 5;              ///< boxes visible at a time
    QFont playbackKeyboardFont;                           ///< of the boxes; playbackKeyboardFontSizePx is the size
    bool playbackProgressEnable = false;                  ///< show the time
    int playbackProgressDisplayMode = 0; ///< 0 elapsed and total time in a box, 1 a bar along the bottom edge
    QColor playbackProgressFgColor{51, 136, 255, 200}; ///< of the played part of the bar
    QColor playbackProgressBgColor{51, 136, 255, 120}; ///< of the rest of the bar
    int playbackProgressSize = 16;                     ///< font size in the box, in pixels; the bar is 3/8 as high
    int playbackProgressRound = 0;                     ///< corner radius; 0: square bar, default radius of the box
    int playbackProgressGapTime = 41;                  ///< minimum recording time between two steps of the bar, in ms
    int playbackAudioSystemVolume = 100;               ///< percent, like the other volumes and gains
    bool playbackAudioSystemMuted = false;             ///< system audio is not heard
    bool playbackAudioSystemEnabled = true;            ///< play and export system audio
    int playbackAudioSystemGain = 100;                 ///< percent, on top of the volume
    int playbackAudioMicrophoneVolume = 100;           ///< percent
    bool playbackAudioMicrophoneMuted = false;         ///< the microphone is not heard
    bool playbackAudioMicrophoneEnabled = true;        ///< play and export the microphone
    int playbackAudioMicrophoneGain = 100;             ///< percent, on top of the volume
    int playbackEncodeFormat = 0;                      ///< 0 MP4, 1 GIF, 2 APNG, 3 WebP
    int recordDelay = 0;                 ///< seconds before a recording starts; applied by the host, not by the module
    int recordFps = 24;                  ///< logic frames per second
    bool recordKeyboard = true;          ///< record keys
    bool recordMouse = true;             ///< record the mouse
    bool recordRecordSystemAudio = true; ///< record system audio
    bool recordRecordMicrophone = true;  ///< record the microphone
    bool recordDontShowRecordingWarning = false;   ///< hides the note in AudioSettingsPanel
    int recordRecordToolbarDisplayType = 0;        ///< 0 all buttons, 1 the most important ones
    bool recordEnableHardwareAcceleration = false; ///< decode with hardware on playback
    int saveQuality = 1;                           ///< of exports: 0 small, 1 balanced, 2 best
    int hostReserved1 = 90;                        ///< reserved for the host
    int hostReserved2 = 30;                        ///< reserved for the host
    int hostReserved3 = 30;                        ///< reserved for the host
    int encodeGifPlayLoop = 0;                     ///< times that an animation is played; 0: endlessly
    bool encodeExitRecordAfterEncode = false;      ///< leave the recording mode after an export
};

extern KELMOVIE_EXPORT KelMovieConfig gKelMovieConfig;

/// The host's store; null before KelMovieConfigInit(), and when the host has none. Not owned.
extern KELMOVIE_EXPORT KelConfigIO *gKelMovieConfigIO;

/// Binds the persisted fields of gKelMovieConfig to the host's store, which must outlive every use of the module. Call
/// it once on the GUI thread, before creating any widget or recorder. With null the defaults remain and nothing is
/// persisted; settings panels must not be shown then.
KELMOVIE_EXPORT void KelMovieConfigInit(KelConfigIO *io);

/// Sets encodeExitRecordAfterEncode and saves it in the host's store, if there is one. GUI thread. To be used as
/// KelExportRequest::onExitRecord.
KELMOVIE_EXPORT void KelMovieSaveExitRecordAfterEncode(bool on);

/// File suffix, without dot, of the format chosen in playbackEncodeFormat: "mp4", "gif", "apng" or "webp"; "gif" for
/// any other value.
KELMOVIE_EXPORT QString KelMovieFormatSuffix();

/// The encoder quality, from 0 to 100, that saveQuality selects: 60 for small files, about half the size of balanced
/// ones; `balanced`; 100 for the best quality, which is lossless in formats that support it. Values of saveQuality that
/// are out of range select `balanced`.
KELMOVIE_EXPORT int KelMovieExportQuality(int balanced = 90);
