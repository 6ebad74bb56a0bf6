#include "kelmovie/support/OverlayRecording.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QSignalSpy>
#include <QtTest>

#include <climits>
#include <functional>

using R = OverlayRecording;
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
    std::unique_ptr<KelPlaybackTrackManager> load() { return recording->load(); }
    QImage picture(KelPlaybackTrackManager &manager) const { return recording->picture(manager); }
    QImage pictureAt(KelPlaybackTrackManager &manager, int frame) const { return recording->pictureAt(manager, frame); }

    std::unique_ptr<OverlayRecording> recording;
};

void PlaybackSettingsTest::init()
{
    gKelMovieConfig = KelMovieConfig();
    recording = std::make_unique<OverlayRecording>();
}

void PlaybackSettingsTest::defaultsShowClicksAndShortcutsOnly()
{
    const auto manager = load();
    QCOMPARE(manager->trackNames().last(), QString("Keyboard"));
    const QImage plain = pictureAt(*manager, R::PlainFrame);
    QVERIFY(pictureAt(*manager, R::ClickFrame) != plain);
    QVERIFY(pictureAt(*manager, R::ShortcutFrame) != plain);
    QVERIFY(pictureAt(*manager, R::LetterFrame) == plain);
    QVERIFY(pictureAt(*manager, R::WheelFrame) != plain);
}

void PlaybackSettingsTest::settingsReachThePicture_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<Change>("change");

    const auto row = [](const char *name, int frame, const Change &change) { QTest::newRow(name) << frame << change; };
    using C = KelMovieConfig;
    row("mouse on", R::ClickFrame, [](C &c) { c.playbackMouseEnable = false; });
    row("mouse buttons", R::ClickFrame, [](C &c) { c.playbackMouseShowActionButton = 6; });
    row("mouse wheel", R::WheelFrame, [](C &c) { c.playbackMouseShowWheel = false; });
    row("mouse colour", R::ClickFrame, [](C &c) { c.playbackMouseColor = Qt::red; });
    row("mouse size", R::ClickFrame, [](C &c) { c.playbackMouseSize = 30; });
    row("click effect", R::ClickFrame, [](C &c) { c.playbackMouseClickEffect = 2; });
    row("wheel effect", R::WheelFrame, [](C &c) { c.playbackMouseWheelEffect = 0; });
    row("key types", R::ShortcutFrame, [](C &c) { c.playbackKeyboardShowKeyType = 2; });
    row("letters", R::LetterFrame, [](C &c) { c.playbackKeyboardShowKeyType = 15; });
    row("keep time", R::ShortcutFrame + 20, [](C &c) { c.playbackKeyboardKeepTime = 0; });
    row("position", R::ShortcutFrame, [](C &c) { c.playbackKeyboardDisplayPos = 3; });
    row("font size", R::ShortcutFrame, [](C &c) { c.playbackKeyboardFontSizePx = 30; });
    row("font colour", R::ShortcutFrame, [](C &c) { c.playbackKeyboardFontColor = Qt::green; });
    row("background", R::ShortcutFrame, [](C &c) { c.playbackKeyboardBgColor = Qt::blue; });
    row("history font", R::ShortcutFrame, [](C &c) { c.playbackKeyboardHistoryFontSize = 10; });
    row("history count", R::ShortcutFrame, [](C &c) { c.playbackKeyboardMaxHistoryCount = 1; });
    row("font", R::ShortcutFrame, [](C &c) { c.playbackKeyboardFont.setBold(true); });
    row("time box", R::PlainFrame, [](C &c) { c.playbackProgressEnable = true; });
    row("progress bar", R::PlainFrame, [](C &c) {
        c.playbackProgressEnable = true;
        c.playbackProgressDisplayMode = 1;
    });
    row("letters of a box", R::LetterFrame, [](C &c) {
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
    if (frame != R::ClickFrame && frame != R::WheelFrame)
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
        for (const int frame : {R::ClickFrame, R::ShortcutFrame, R::LetterFrame, R::WheelFrame})
            QVERIFY(!pictureAt(*manager, frame).isNull());
    }
}

QTEST_MAIN(PlaybackSettingsTest)
#include "tst_playback_settings.moc"
