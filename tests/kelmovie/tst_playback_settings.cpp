#include "KeyScript.h"
#include "RecordingFixture.h"
#include "ScriptedDecoder.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QPainter>
#include <QSignalSpy>
#include <QtTest>

#include <climits>
#include <functional>

using Change = std::function<void(KelMovieConfig &)>;
Q_DECLARE_METATYPE(Change)

/// Composed pictures, before and after a setting has changed.
class PlaybackSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void defaultsShowClicksAndShortcutsOnly();
    void settingsReachThePicture_data();
    void settingsReachThePicture();
    void senselessSettingsAreBroughtIntoRange();

private:
    enum Frame { ClickFrame = 10, PlainFrame = 60, ShortcutFrame = 100, LetterFrame = 200, WheelFrame = 310 };

    std::unique_ptr<KelPlaybackTrackManager> load()
    {
        KelPlaybackSeams seams = KelPlaybackSeams::real();
        seams.decoders = scriptedDecoders(script);
        return std::make_unique<KelPlaybackTrackManager>(recording->path(), false, seams, nullptr);
    }
    /// Stepped through, because effects are played by steps.
    static void play(KelPlaybackTrackManager &manager, int toFrame)
    {
        for (int frame = 0; frame <= toFrame; ++frame)
            manager.setFrameSilently(frame);
    }
    QImage picture(KelPlaybackTrackManager &manager) const
    {
        QImage image(recording->metadata.recordArea.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::gray);
        QPainter painter(&image);
        manager.paint(&painter);
        // The scripted video's corner tells the frame.
        painter.fillRect(QRect(QPoint(), script->frameSize), Qt::black);
        return image;
    }
    QImage pictureAt(KelPlaybackTrackManager &manager, int frame) const
    {
        play(manager, frame);
        return picture(manager);
    }

    std::shared_ptr<DecoderScript> script;
    std::unique_ptr<RecordingFixture> recording;
};

void PlaybackSettingsTest::init()
{
    gKelMovieConfig = KelMovieConfig();
    script = std::make_shared<DecoderScript>();
    recording = std::make_unique<RecordingFixture>(400);
    recording->metadata.recordArea = QRect(0, 0, 640, 360);
    recording->metadata.keyboardTrack = recording->metadata.mouseTrack = true;
    recording->save();
    writeKeyMeta(recording->path() + "/Keyboard",
                 keyMetaFile(keyScript("98:+Return 99:+Control 100:+C 101:-C 102:-Control "
                                       "195:+A 196:+B 197:+C 198:+D 199:+E 200:+F"),
                             QSize(640, 360)));
    QDir().mkpath(recording->path() + "/Mouse/cursors");
    QImage cursor(16, 16, QImage::Format_ARGB32);
    cursor.fill(Qt::white);
    cursor.save(recording->path() + "/Mouse/cursors/arrow.png");
    recording->write("Mouse/cursor.json", R"({"cursors": [{"id": "arrow", "image": "arrow.png"}]})");
    recording->write("Mouse/mousemoves-0.json",
                     R"([{"frame": 0, "x": 400, "y": 100, "cursor": "arrow", "timestamp": 1}])");
    recording->write("Mouse/mouseclicks-0.json", R"([
        {"frame": 5, "x": 400, "y": 100, "action": "click", "button": "left", "timestamp": 200},
        {"frame": 7, "x": 400, "y": 100, "action": "release", "button": "left", "timestamp": 280},
        {"frame": 300, "x": 400, "y": 100, "action": "wheel", "button": "wheel", "delta": 120, "timestamp": 9000}])");
}

void PlaybackSettingsTest::defaultsShowClicksAndShortcutsOnly()
{
    const auto manager = load();
    QCOMPARE(manager->trackNames().last(), QString("Keyboard"));
    const QImage plain = pictureAt(*manager, PlainFrame);
    QVERIFY(pictureAt(*manager, ClickFrame) != plain);
    QVERIFY(pictureAt(*manager, ShortcutFrame) != plain);
    QVERIFY(pictureAt(*manager, LetterFrame) == plain);
    QVERIFY(pictureAt(*manager, WheelFrame) != plain);
}

void PlaybackSettingsTest::settingsReachThePicture_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<Change>("change");

    const auto row = [](const char *name, int frame, const Change &change) { QTest::newRow(name) << frame << change; };
    using C = KelMovieConfig;
    row("mouse on", ClickFrame, [](C &c) { c.playbackMouseEnable = false; });
    row("mouse buttons", ClickFrame, [](C &c) { c.playbackMouseShowActionButton = 6; });
    row("mouse wheel", WheelFrame, [](C &c) { c.playbackMouseShowWheel = false; });
    row("mouse colour", ClickFrame, [](C &c) { c.playbackMouseColor = Qt::red; });
    row("mouse size", ClickFrame, [](C &c) { c.playbackMouseSize = 30; });
    row("click effect", ClickFrame, [](C &c) { c.playbackMouseClickEffect = 2; });
    row("wheel effect", WheelFrame, [](C &c) { c.playbackMouseWheelEffect = 0; });
    row("key types", ShortcutFrame, [](C &c) { c.playbackKeyboardShowKeyType = 2; });
    row("letters", LetterFrame, [](C &c) { c.playbackKeyboardShowKeyType = 15; });
    row("keep time", ShortcutFrame + 20, [](C &c) { c.playbackKeyboardKeepTime = 0; });
    row("position", ShortcutFrame, [](C &c) { c.playbackKeyboardDisplayPos = 3; });
    row("font size", ShortcutFrame, [](C &c) { c.playbackKeyboardFontSizePx = 30; });
    row("font colour", ShortcutFrame, [](C &c) { c.playbackKeyboardFontColor = Qt::green; });
    row("background", ShortcutFrame, [](C &c) { c.playbackKeyboardBgColor = Qt::blue; });
    row("history font", ShortcutFrame, [](C &c) { c.playbackKeyboardHistoryFontSize = 10; });
    row("history count", ShortcutFrame, [](C &c) { c.playbackKeyboardMaxHistoryCount = 1; });
    row("font", ShortcutFrame, [](C &c) { c.playbackKeyboardFont.setBold(true); });
    row("time box", PlainFrame, [](C &c) { c.playbackProgressEnable = true; });
    row("progress bar", PlainFrame, [](C &c) {
        c.playbackProgressEnable = true;
        c.playbackProgressDisplayMode = 1;
    });
    row("letters of a box", LetterFrame, [](C &c) {
        c.playbackKeyboardShowKeyType = 15;
        c.playbackKeyboardMaxContinueChar = 3;
    });
}

void PlaybackSettingsTest::settingsReachThePicture()
{
    QFETCH(int, frame);
    QFETCH(Change, change);

    const auto early = load();
    const QImage before = pictureAt(*early, frame);
    change(gKelMovieConfig);
    const auto late = load();
    const QImage after = pictureAt(*late, frame);
    QVERIFY(after != before);

    // When playback starts.
    QVERIFY(picture(*early) == before);
    early->play();
    early->pause();
    early->seek(0);
    QVERIFY(pictureAt(*early, frame) == after);

    // When a panel says so. What is painted by other settings is seen at once, running effects with the next click.
    gKelMovieConfig = KelMovieConfig();
    QSignalSpy repaints(late.get(), &KelPlaybackTrackManager::sigFrameChanged);
    late->updateSettings();
    QCOMPARE(repaints, (QList<QVariantList>{{frame}}));
    if (frame != ClickFrame && frame != WheelFrame)
        QVERIFY(picture(*late) == before);
    QVERIFY(pictureAt(*late, frame) == before);
}

void PlaybackSettingsTest::senselessSettingsAreBroughtIntoRange()
{
    for (const int value : {INT_MIN, -1, 0, INT_MAX}) {
        KelMovieConfig &config = gKelMovieConfig;
        config.playbackMouseShowActionButton = config.playbackMouseSize = value;
        config.playbackMouseClickEffect = config.playbackMouseWheelEffect = value;
        config.playbackKeyboardMaxContinueChar = config.playbackKeyboardKeepTime = value;
        config.playbackKeyboardDisplayPos = config.playbackKeyboardFontSizePx = value;
        config.playbackKeyboardHistoryFontSize = config.playbackKeyboardMaxHistoryCount = value;
        config.playbackKeyboardShowKeyType = 15;
        config.playbackMouseColor = config.playbackKeyboardFontColor = config.playbackKeyboardBgColor = QColor();
        const auto manager = load();
        for (const int frame : {ClickFrame, ShortcutFrame, LetterFrame, WheelFrame})
            QVERIFY(!pictureAt(*manager, frame).isNull());
    }
}

QTEST_MAIN(PlaybackSettingsTest)
#include "tst_playback_settings.moc"
