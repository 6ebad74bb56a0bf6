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

/// Compares composed frames before and after changes of the settings.
class PlaybackSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void defaultsShowClicksAndShortcutsOnly();
    void settingsTakeEffect_data();
    void settingsTakeEffect();
    void invalidSettingsAreClamped();

private:
    std::unique_ptr<KelPlaybackTrackManager> load() { return recording->load(); }
    QImage image(KelPlaybackTrackManager &manager) const { return recording->image(manager); }
    QImage imageAt(KelPlaybackTrackManager &manager, int frame) const { return recording->imageAt(manager, frame); }

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
    const QImage plain = imageAt(*manager, R::PlainFrame);
    QVERIFY(imageAt(*manager, R::ClickFrame) != plain);
    QVERIFY(imageAt(*manager, R::ShortcutFrame) != plain);
    QVERIFY(imageAt(*manager, R::LetterFrame) == plain);
    QVERIFY(imageAt(*manager, R::WheelFrame) != plain);
}

void PlaybackSettingsTest::settingsTakeEffect_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<Change>("change");

    const auto row = [](const char *name, int frame, const Change &change) { QTest::newRow(name) << frame << change; };
    using C = KelMovieConfig;
    row("mouse on", R::ClickFrame, [](C &c) { c.playbackMouseEnable = false; });
    row("mouse buttons", R::ClickFrame, [](C &c) { c.playbackMouseShowActionButton = 6; });
    row("mouse wheel", R::WheelFrame, [](C &c) { c.playbackMouseShowWheel = false; });
    row("mouse color", R::ClickFrame, [](C &c) { c.playbackMouseColor = Qt::red; });
    row("mouse size", R::ClickFrame, [](C &c) { c.playbackMouseSize = 30; });
    row("click effect", R::ClickFrame, [](C &c) { c.playbackMouseClickEffect = 2; });
    row("wheel effect", R::WheelFrame, [](C &c) { c.playbackMouseWheelEffect = 0; });
    row("key types", R::ShortcutFrame, [](C &c) { c.playbackKeyboardShowKeyType = 2; });
    row("letters", R::LetterFrame, [](C &c) { c.playbackKeyboardShowKeyType = 15; });
    row("keep time", R::ShortcutFrame + 20, [](C &c) { c.playbackKeyboardKeepTime = 0; });
    row("position", R::ShortcutFrame, [](C &c) { c.playbackKeyboardDisplayPos = 3; });
    row("font size", R::ShortcutFrame, [](C &c) { c.playbackKeyboardFontSizePx = 30; });
    row("font color", R::ShortcutFrame, [](C &c) { c.playbackKeyboardFontColor = Qt::green; });
    row("background", R::ShortcutFrame, [](C &c) { c.playbackKeyboardBgColor = Qt::blue; });
    row("history font", R::ShortcutFrame, [](C &c) { c.playbackKeyboardHistoryFontSize = 10; });
    row("history count", R::ShortcutFrame, [](C &c) { c.playbackKeyboardMaxHistoryCount = 1; });
    row("font", R::ShortcutFrame, [](C &c) { c.playbackKeyboardFont.setBold(true); });
    row("time box", R::PlainFrame, [](C &c) { c.playbackProgressEnable = true; });
    row("progress bar", R::PlainFrame, [](C &c) {
        c.playbackProgressEnable = true;
        c.playbackProgressDisplayMode = 1;
    });
    row("letters per box", R::LetterFrame, [](C &c) {
        c.playbackKeyboardShowKeyType = 15;
        c.playbackKeyboardMaxContinueChar = 3;
    });
}

void PlaybackSettingsTest::settingsTakeEffect()
{
    QFETCH(int, frame);
    QFETCH(Change, change);

    const auto early = load();
    const QImage before = imageAt(*early, frame);
    change(gKelMovieConfig);
    const auto late = load();
    const QImage after = imageAt(*late, frame);
    QVERIFY(after != before);

    // When playback starts.
    QVERIFY(image(*early) == before);
    early->play();
    early->pause();
    early->seek(0);
    QVERIFY(imageAt(*early, frame) == after);

    // When a panel reports a change: at once, except that running effects only change with the next click.
    gKelMovieConfig = KelMovieConfig();
    QSignalSpy repaints(late.get(), &KelPlaybackTrackManager::sigFrameChanged);
    late->updateSettings();
    QCOMPARE(repaints, (QList<QVariantList>{{frame}}));
    if (frame != R::ClickFrame && frame != R::WheelFrame)
        QVERIFY(image(*late) == before);
    QVERIFY(imageAt(*late, frame) == before);
}

void PlaybackSettingsTest::invalidSettingsAreClamped()
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
            QVERIFY(!imageAt(*manager, frame).isNull());
    }
}

QTEST_MAIN(PlaybackSettingsTest)
#include "tst_playback_settings.moc"
