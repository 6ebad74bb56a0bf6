#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QColor>
#include <QFont>
#include <QString>

class KelConfigIO;

/// All settings of the module. Holds the current values at any time: read it at the moment of use, on the GUI thread,
/// and copy nothing. The host sees the record too, so the order of the fields is part of the interface.
///
/// KelMovieConfigKeys.h has the key of each persisted field in the host's store. The hostReserved fields, the types and
/// the replacing of mouse effects and saveQuality have no key and are never persisted.
struct KelMovieConfig {
    bool playbackMouseEnable = true;
    int playbackMouseShowActionButton = 7; ///< bit set: 1 left click, 2 right click, 4 middle click
    bool playbackMouseShowWheel = true;
    QColor playbackMouseColor{0x33, 0x88, 0xff};
    int playbackMouseSize = 15;              ///< of the effects; 15: 64 pixels of a 96-dpi desktop
    int playbackMouseClickEffect = 1;        ///< 0 none, 1 ray, 2 floral, 3 fireworks, 4 stars, 5 ripple, 6 pressing
    int playbackMouseWheelEffect = 1;        ///< 0 none, 1 arrow
    bool playbackMouseReplaceEffects = true; ///< a click ends the effect of the last one with the same button
    int playbackKeyboardShowKeyType = 14;    ///< bit set: 1 characters, 2 other keys, 4 modifiers, 8 combinations
    int playbackKeyboardMaxContinueChar = 5; ///< letters typed in a row that one box takes
    int playbackKeyboardKeepTime = 2;        ///< seconds
    int playbackKeyboardDisplayPos = 2;      ///< at the bottom: 1 centre, 2 left, 3 right
    int playbackKeyboardFontSizePx = 22;     ///< pixels of a 96-dpi desktop
    QColor playbackKeyboardFontColor{255, 255, 255, 255};
    QColor playbackKeyboardBgColor{0, 0, 0, 200};
    int playbackKeyboardHistoryFontSize = 2; ///< pixels by which earlier boxes have a smaller font
    int playbackKeyboardMaxHistoryCount = 5; ///< boxes at a time
    QFont playbackKeyboardFont;
    bool playbackProgressEnable = false;
    int playbackProgressDisplayMode = 0; ///< 0 elapsed and total time in a box, 1 a bar along the bottom edge
    QColor playbackProgressFgColor{51, 136, 255, 200}; ///< of the played part of the bar
    QColor playbackProgressBgColor{51, 136, 255, 120};
    int playbackProgressSize = 16;       ///< of the letters in the box; the bar is 3/8 as high
    int playbackProgressRound = 0;       ///< radius of the corners; 0: square bar, the box as it was designed
    int playbackProgressGapTime = 41;    ///< ms of the recording after which the bar moves on, at the earliest
    int playbackAudioSystemVolume = 100; ///< percent, like the gains
    bool playbackAudioSystemMuted = false;
    bool playbackAudioSystemEnabled = true;
    int playbackAudioSystemGain = 100;
    int playbackAudioMicrophoneVolume = 100;
    bool playbackAudioMicrophoneMuted = false;
    bool playbackAudioMicrophoneEnabled = true;
    int playbackAudioMicrophoneGain = 100;
    int playbackEncodeFormat = 0; ///< 0 MP4, 1 GIF, 2 APNG, 3 WebP
    int recordDelay = 0;          ///< seconds before a recording starts; the host waits, not the module
    int recordFps = 24;           ///< logic frames a second
    bool recordKeyboard = true;
    bool recordMouse = true;
    bool recordRecordSystemAudio = true;
    bool recordRecordMicrophone = true;
    bool recordDontShowRecordingWarning = false;
    int recordRecordToolbarDisplayType = 0;
    bool recordEnableHardwareAcceleration = false; ///< decode with hardware on playback
    int saveQuality = 1;                           ///< of exports: 0 small, 1 balanced, 2 best
    int hostReserved1 = 90;
    int hostReserved2 = 30;
    int hostReserved3 = 30;
    int encodeGifPlayLoop = 0;
    bool encodeExitRecordAfterEncode = false;
};

extern KELMOVIE_EXPORT KelMovieConfig gKelMovieConfig;

/// The host's store, null before KelMovieConfigInit() and when it was given none. Not owned.
extern KELMOVIE_EXPORT KelConfigIO *gKelMovieConfigIO;

/// Binds the persisted fields of gKelMovieConfig to the host's store, which must outlive the module's use. To be
/// called once, before any widget or recorder exists. With null the defaults stay and nothing is persisted; settings
/// panels must not be shown then.
KELMOVIE_EXPORT void KelMovieConfigInit(KelConfigIO *io);

/// Sets encodeExitRecordAfterEncode and saves it in the host's store, if there is one. GUI thread. Fits
/// KelExportRequest::onExitRecord.
KELMOVIE_EXPORT void KelMovieSaveExitRecordAfterEncode(bool on);

/// File suffix, without dot, of the format chosen in playbackEncodeFormat: "mp4", "gif", "apng" or "webp"; "gif" for
/// any other value.
KELMOVIE_EXPORT QString KelMovieFormatSuffix();

/// What saveQuality means to an encoder, whose scale is 0 to 100: 60 for small files, about half as large as balanced
/// ones; `balanced`; 100 for the best, which is lossless where the format can be. Any other value counts as balanced.
KELMOVIE_EXPORT int KelMovieExportQuality(int balanced = 90);
