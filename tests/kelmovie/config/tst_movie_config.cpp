#include "config/KelConfigIO.h"
#include "config/KelMovieConfig.h"

#include <QMap>
#include <QVariant>
#include <QtTest>

#include <algorithm>
#include <new>

namespace
{
/// Records the bindings, and loads stored values.
class RecordingConfigIO : public KelConfigIO
{
public:
    struct Binding {
        QString key;
        QString value;
        const void *field;
    };
    QVector<Binding> bindings;
    QMap<QString, QVariant> stored;

    void bindFont(const QString &key, QFont *field) override { bind(key, field, "font"); }
    void bindString(const QString &, QString *) override { QFAIL("no string is bound"); }
    void bindColor(const QString &key, QColor *field) override { bind(key, field, field->name(QColor::HexArgb)); }
    void bindBool(const QString &key, bool *field) override { bind(key, field, *field ? "true" : "false"); }
    void bindInt(const QString &key, int *field) override { bind(key, field, QString::number(*field)); }
    void saveFont(const QString &, const QFont &) override { QFAIL("nothing is saved"); }
    void saveString(const QString &, const QString &) override { QFAIL("nothing is saved"); }
    void saveColor(const QString &, const QColor &) override { QFAIL("nothing is saved"); }
    void saveBool(const QString &, bool) override { QFAIL("nothing is saved"); }
    void saveInt(const QString &, int) override { QFAIL("nothing is saved"); }

private:
    template <typename T>
    void bind(const QString &key, T *field, const QString &value)
    {
        bindings.append({key, value, field});
        if (stored.contains(key))
            *field = stored.value(key).value<T>();
    }
};

KelMovieConfig &c = gKelMovieConfig;

/// The bindings in order: the position of the field in the struct, the key without "KelMovie.", and the default.
const char kBindings[] = R"(
19 playback.progress.enable false
20 playback.progress.displayMode 0
21 playback.progress.fgColor #c83388ff
22 playback.progress.bgColor #783388ff
23 playback.progress.size 16
24 playback.progress.round 0
25 playback.progress.gapTime 41
1 playback.mouse.enable true
2 playback.mouse.showActionButton 7
3 playback.mouse.showWheel true
4 playback.mouse.color #ff3388ff
5 playback.mouse.size 15
9 playback.keyboard.showKeyType 14
10 playback.keyboard.maxContinueChar 5
11 playback.keyboard.keepTime 2
12 playback.keyboard.displayPos 2
13 playback.keyboard.fontSizePx 22
14 playback.keyboard.fontColor #ffffffff
15 playback.keyboard.bgColor #c8000000
16 playback.keyboard.historyFontSize 2
17 playback.keyboard.maxHistoryCount 5
18 playback.keyboard.font font
34 playback.encodeFormat 0
26 playback.audio.system.volume 100
27 playback.audio.system.muted false
28 playback.audio.system.enabled true
29 playback.audio.system.gain 100
30 playback.audio.microphone.volume 100
31 playback.audio.microphone.muted false
32 playback.audio.microphone.enabled true
33 playback.audio.microphone.gain 100
35 record.delay 0
36 record.fps 24
37 record.keyboard true
38 record.mouse true
39 record.recordSystemAudio true
40 record.recordMicrophone true
41 record.dontShowRecordingWarning false
42 record.recordToolbarDisplayType 0
43 record.enableHardwareAcceleration false
48 encode.gif.playLoop 0
49 encode.exitRecordAfterEncode false
)";
} // namespace

class MovieConfigTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void bindsEveryKeyToItsField();
    void storedValuesReplaceDefaults();
    void choicesOutOfRange();
};

void MovieConfigTest::init()
{
    // In place, because the store holds addresses of fields.
    gKelMovieConfig.~KelMovieConfig();
    new (&gKelMovieConfig) KelMovieConfig;
    KelMovieConfigInit(nullptr);
}

/// Hosts rely on the order of the fields as well as on that of the keys.
void MovieConfigTest::bindsEveryKeyToItsField()
{
    RecordingConfigIO io;
    KelMovieConfigInit(&io);
    QCOMPARE(gKelMovieConfigIO, &io);
    QVector<const void *> fields{&c.playbackMouseClickEffect,
                                 &c.playbackMouseWheelEffect,
                                 &c.playbackMouseReplaceEffects,
                                 &c.saveQuality,
                                 &c.hostReserved1,
                                 &c.hostReserved2,
                                 &c.hostReserved3};
    for (const RecordingConfigIO::Binding &binding : qAsConst(io.bindings))
        fields << binding.field;
    std::sort(fields.begin(), fields.end());
    QCOMPARE(fields.first(), static_cast<const void *>(&c));
    QString bound = "\n";
    for (const auto &[key, value, field] : qAsConst(io.bindings)) {
        QVERIFY2(key.startsWith("KelMovie."), qPrintable(key));
        bound += QString("%1 %2 %3\n").arg(fields.indexOf(field) + 1).arg(key.mid(9), value);
    }
    QCOMPARE(bound.split('\n'), QString(kBindings).split('\n'));
    QVERIFY(c.playbackMouseReplaceEffects);
    QCOMPARE((QVector<int>{c.playbackMouseClickEffect, c.playbackMouseWheelEffect, c.saveQuality, c.hostReserved1,
                           c.hostReserved2, c.hostReserved3}),
             (QVector<int>{1, 1, 1, 90, 30, 30}));
    KelMovieConfigInit(nullptr);
    QVERIFY(!gKelMovieConfigIO);
}

void MovieConfigTest::storedValuesReplaceDefaults()
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
}

void MovieConfigTest::choicesOutOfRange()
{
    const QMap<int, QString> suffixes{{-1, "gif"}, {0, "mp4"}, {1, "gif"}, {2, "apng"}, {3, "webp"}, {4, "gif"}};
    for (auto it = suffixes.begin(); it != suffixes.end(); ++it) {
        c.playbackEncodeFormat = it.key();
        QCOMPARE(KelMovieFormatSuffix(), it.value());
    }
    const QMap<int, int> qualities{{-1, 95}, {0, 60}, {1, 95}, {2, 100}, {3, 95}};
    for (auto it = qualities.begin(); it != qualities.end(); ++it) {
        c.saveQuality = it.key();
        QCOMPARE(KelMovieExportQuality(95), it.value());
    }
}

QTEST_MAIN(MovieConfigTest)
#include "tst_movie_config.moc"
