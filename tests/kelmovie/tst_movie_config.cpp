#include "config/KelConfigIO.h"
#include "config/KelMovieConfig.h"

#include <QMap>
#include <QVariant>
#include <QtTest>

#include <algorithm>
#include <new>

namespace
{
/// Remembers what is bound, and fills in what it has stored.
class RecordingConfigIO : public KelConfigIO
{
public:
    struct Binding {
        QString key;
        const char *type;
        const void *field;
    };
    QVector<Binding> bindings;
    QMap<QString, QVariant> stored;

    void bindFont(const QString &key, QFont *field) override { bind(key, "font", field); }
    void bindString(const QString &, QString *) override { QFAIL("no string is bound"); }
    void bindColor(const QString &key, QColor *field) override { bind(key, "color", field); }
    void bindBool(const QString &key, bool *field) override { bind(key, "bool", field); }
    void bindInt(const QString &key, int *field) override { bind(key, "int", field); }
    void saveFont(const QString &, const QFont &) override { QFAIL("nothing is saved"); }
    void saveString(const QString &, const QString &) override { QFAIL("nothing is saved"); }
    void saveColor(const QString &, const QColor &) override { QFAIL("nothing is saved"); }
    void saveBool(const QString &, bool) override { QFAIL("nothing is saved"); }
    void saveInt(const QString &, int) override { QFAIL("nothing is saved"); }

private:
    template <typename T>
    void bind(const QString &key, const char *type, T *field)
    {
        bindings.append({key, type, field});
        if (stored.contains(key))
            *field = stored.value(key).value<T>();
    }
};

struct Expected {
    const char *key;
    const char *type;
    const void *field;
};

KelMovieConfig &c = gKelMovieConfig;

const Expected Bindings[] = {
    {"playback.progress.enable", "bool", &c.playbackProgressEnable},
    {"playback.progress.displayMode", "int", &c.playbackProgressDisplayMode},
    {"playback.progress.fgColor", "color", &c.playbackProgressFgColor},
    {"playback.progress.bgColor", "color", &c.playbackProgressBgColor},
    {"playback.progress.size", "int", &c.playbackProgressSize},
    {"playback.progress.round", "int", &c.playbackProgressRound},
    {"playback.progress.gapTime", "int", &c.playbackProgressGapTime},
    {"playback.mouse.enable", "bool", &c.playbackMouseEnable},
    {"playback.mouse.showActionButton", "int", &c.playbackMouseShowActionButton},
    {"playback.mouse.showWheel", "bool", &c.playbackMouseShowWheel},
    {"playback.mouse.color", "color", &c.playbackMouseColor},
    {"playback.mouse.size", "int", &c.playbackMouseSize},
    {"playback.keyboard.showKeyType", "int", &c.playbackKeyboardShowKeyType},
    {"playback.keyboard.maxContinueChar", "int", &c.playbackKeyboardMaxContinueChar},
    {"playback.keyboard.keepTime", "int", &c.playbackKeyboardKeepTime},
    {"playback.keyboard.displayPos", "int", &c.playbackKeyboardDisplayPos},
    {"playback.keyboard.fontSizePx", "int", &c.playbackKeyboardFontSizePx},
    {"playback.keyboard.fontColor", "color", &c.playbackKeyboardFontColor},
    {"playback.keyboard.bgColor", "color", &c.playbackKeyboardBgColor},
    {"playback.keyboard.historyFontSize", "int", &c.playbackKeyboardHistoryFontSize},
    {"playback.keyboard.maxHistoryCount", "int", &c.playbackKeyboardMaxHistoryCount},
    {"playback.keyboard.font", "font", &c.playbackKeyboardFont},
    {"playback.encodeFormat", "int", &c.playbackEncodeFormat},
    {"playback.audio.system.volume", "int", &c.playbackAudioSystemVolume},
    {"playback.audio.system.muted", "bool", &c.playbackAudioSystemMuted},
    {"playback.audio.system.enabled", "bool", &c.playbackAudioSystemEnabled},
    {"playback.audio.system.gain", "int", &c.playbackAudioSystemGain},
    {"playback.audio.microphone.volume", "int", &c.playbackAudioMicrophoneVolume},
    {"playback.audio.microphone.muted", "bool", &c.playbackAudioMicrophoneMuted},
    {"playback.audio.microphone.enabled", "bool", &c.playbackAudioMicrophoneEnabled},
    {"playback.audio.microphone.gain", "int", &c.playbackAudioMicrophoneGain},
    {"record.delay", "int", &c.recordDelay},
    {"record.fps", "int", &c.recordFps},
    {"record.keyboard", "bool", &c.recordKeyboard},
    {"record.mouse", "bool", &c.recordMouse},
    {"record.recordSystemAudio", "bool", &c.recordRecordSystemAudio},
    {"record.recordMicrophone", "bool", &c.recordRecordMicrophone},
    {"record.dontShowRecordingWarning", "bool", &c.recordDontShowRecordingWarning},
    {"record.recordToolbarDisplayType", "int", &c.recordRecordToolbarDisplayType},
    {"record.enableHardwareAcceleration", "bool", &c.recordEnableHardwareAcceleration},
    {"encode.gif.playLoop", "int", &c.encodeGifPlayLoop},
    {"encode.exitRecordAfterEncode", "bool", &c.encodeExitRecordAfterEncode},
};

template <typename T>
QVariantList values(std::initializer_list<T KelMovieConfig::*> fields)
{
    QVariantList list;
    for (const auto field : fields)
        list << QVariant::fromValue(gKelMovieConfig.*field);
    return list;
}
} // namespace

class TestMovieConfig : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void startsWithTheDefaults();
    void fieldsKeepTheirOrder();
    void bindsEveryKeyToItsField();
    void storedValuesReplaceDefaults();
    void formatSuffix();
    void exportQuality();
};

void TestMovieConfig::init()
{
    // In place: the static initialisation already proved itself in the first test, and hosts hold field addresses.
    gKelMovieConfig.~KelMovieConfig();
    new (&gKelMovieConfig) KelMovieConfig;
    KelMovieConfigInit(nullptr);
}

void TestMovieConfig::startsWithTheDefaults()
{
    using C = KelMovieConfig;
    QVERIFY(!gKelMovieConfigIO);
    QCOMPARE(values<bool>({&C::playbackMouseEnable, &C::playbackMouseShowWheel, &C::playbackMouseReplaceEffects,
                           &C::playbackAudioSystemEnabled, &C::playbackAudioMicrophoneEnabled, &C::recordKeyboard,
                           &C::recordMouse, &C::recordRecordSystemAudio, &C::recordRecordMicrophone}),
             QVariantList(QVector<QVariant>(9, true).toList()));
    QCOMPARE(values<bool>({&C::playbackProgressEnable, &C::playbackAudioSystemMuted, &C::playbackAudioMicrophoneMuted,
                           &C::recordDontShowRecordingWarning, &C::recordEnableHardwareAcceleration,
                           &C::encodeExitRecordAfterEncode}),
             QVariantList(QVector<QVariant>(6, false).toList()));
    QCOMPARE(values<int>({&C::playbackMouseShowActionButton,
                          &C::playbackMouseSize,
                          &C::playbackMouseClickEffect,
                          &C::playbackMouseWheelEffect,
                          &C::playbackKeyboardShowKeyType,
                          &C::playbackKeyboardMaxContinueChar,
                          &C::playbackKeyboardKeepTime,
                          &C::playbackKeyboardDisplayPos,
                          &C::playbackKeyboardFontSizePx,
                          &C::playbackKeyboardHistoryFontSize,
                          &C::playbackKeyboardMaxHistoryCount,
                          &C::playbackProgressDisplayMode,
                          &C::playbackProgressSize,
                          &C::playbackProgressRound,
                          &C::playbackProgressGapTime,
                          &C::playbackAudioSystemVolume,
                          &C::playbackAudioSystemGain,
                          &C::playbackAudioMicrophoneVolume,
                          &C::playbackAudioMicrophoneGain,
                          &C::playbackEncodeFormat,
                          &C::recordDelay,
                          &C::recordFps,
                          &C::recordRecordToolbarDisplayType,
                          &C::saveQuality,
                          &C::hostReserved1,
                          &C::hostReserved2,
                          &C::hostReserved3,
                          &C::encodeGifPlayLoop}),
             (QVariantList{7,  15,  1,   1,   14,  5, 2, 2,  22, 2, 5,  0,  16, 0,
                           41, 100, 100, 100, 100, 0, 0, 24, 0,  1, 90, 30, 30, 0}));
    QCOMPARE(c.playbackMouseColor, QColor("#3388ff"));
    QCOMPARE(c.playbackKeyboardFontColor, QColor(255, 255, 255, 255));
    QCOMPARE(c.playbackKeyboardBgColor, QColor(0, 0, 0, 200));
    QCOMPARE(c.playbackProgressFgColor, QColor(51, 136, 255, 200));
    QCOMPARE(c.playbackProgressBgColor, QColor(51, 136, 255, 120));
}

void TestMovieConfig::fieldsKeepTheirOrder()
{
    const void *ordered[] = {&c.playbackMouseEnable,
                             &c.playbackMouseShowActionButton,
                             &c.playbackMouseShowWheel,
                             &c.playbackMouseColor,
                             &c.playbackMouseSize,
                             &c.playbackMouseClickEffect,
                             &c.playbackMouseWheelEffect,
                             &c.playbackMouseReplaceEffects,
                             &c.playbackKeyboardShowKeyType,
                             &c.playbackKeyboardMaxContinueChar,
                             &c.playbackKeyboardKeepTime,
                             &c.playbackKeyboardDisplayPos,
                             &c.playbackKeyboardFontSizePx,
                             &c.playbackKeyboardFontColor,
                             &c.playbackKeyboardBgColor,
                             &c.playbackKeyboardHistoryFontSize,
                             &c.playbackKeyboardMaxHistoryCount,
                             &c.playbackKeyboardFont,
                             &c.playbackProgressEnable,
                             &c.playbackProgressDisplayMode,
                             &c.playbackProgressFgColor,
                             &c.playbackProgressBgColor,
                             &c.playbackProgressSize,
                             &c.playbackProgressRound,
                             &c.playbackProgressGapTime,
                             &c.playbackAudioSystemVolume,
                             &c.playbackAudioSystemMuted,
                             &c.playbackAudioSystemEnabled,
                             &c.playbackAudioSystemGain,
                             &c.playbackAudioMicrophoneVolume,
                             &c.playbackAudioMicrophoneMuted,
                             &c.playbackAudioMicrophoneEnabled,
                             &c.playbackAudioMicrophoneGain,
                             &c.playbackEncodeFormat,
                             &c.recordDelay,
                             &c.recordFps,
                             &c.recordKeyboard,
                             &c.recordMouse,
                             &c.recordRecordSystemAudio,
                             &c.recordRecordMicrophone,
                             &c.recordDontShowRecordingWarning,
                             &c.recordRecordToolbarDisplayType,
                             &c.recordEnableHardwareAcceleration,
                             &c.saveQuality,
                             &c.hostReserved1,
                             &c.hostReserved2,
                             &c.hostReserved3,
                             &c.encodeGifPlayLoop,
                             &c.encodeExitRecordAfterEncode};
    QCOMPARE(int(std::size(ordered)), 49);
    QVERIFY(std::is_sorted(std::begin(ordered), std::end(ordered)));
    QCOMPARE(static_cast<const void *>(&c), ordered[0]);
}

void TestMovieConfig::bindsEveryKeyToItsField()
{
    RecordingConfigIO io;
    KelMovieConfigInit(&io);
    QCOMPARE(gKelMovieConfigIO, &io);
    QCOMPARE(io.bindings.size(), int(std::size(Bindings)));
    QCOMPARE(io.bindings.size(), 42);
    for (int i = 0; i < io.bindings.size(); ++i) {
        QCOMPARE(io.bindings[i].key, QStringLiteral("KelMovie.") + QLatin1String(Bindings[i].key));
        QCOMPARE(io.bindings[i].type, Bindings[i].type);
        QCOMPARE(io.bindings[i].field, Bindings[i].field);
    }
    KelMovieConfigInit(nullptr);
    QVERIFY(!gKelMovieConfigIO);
}

void TestMovieConfig::storedValuesReplaceDefaults()
{
    RecordingConfigIO io;
    io.stored = {{"KelMovie.record.fps", 60},
                 {"KelMovie.record.mouse", false},
                 {"KelMovie.playback.mouse.color", QColor(Qt::red)},
                 {"KelMovie.playback.keyboard.font", QFont("Mono", 33)}};
    KelMovieConfigInit(&io);
    QCOMPARE(c.recordFps, 60);
    QCOMPARE(c.recordMouse, false);
    QCOMPARE(c.playbackMouseColor, QColor(Qt::red));
    QCOMPARE(c.playbackKeyboardFont.family(), QString("Mono"));
    QCOMPARE(c.playbackProgressGapTime, 41);
}

void TestMovieConfig::formatSuffix()
{
    const QMap<int, QString> expected{{-1, "gif"}, {0, "mp4"}, {1, "gif"}, {2, "apng"}, {3, "webp"}, {4, "gif"}};
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        c.playbackEncodeFormat = it.key();
        QCOMPARE(KelMovieFormatSuffix(), it.value());
    }
}

void TestMovieConfig::exportQuality()
{
    const QMap<int, int> expected{{-1, 95}, {0, 60}, {1, 95}, {2, 100}, {3, 95}};
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        c.saveQuality = it.key();
        QCOMPARE(KelMovieExportQuality(95), it.value());
    }
}

QTEST_MAIN(TestMovieConfig)
#include "tst_movie_config.moc"
