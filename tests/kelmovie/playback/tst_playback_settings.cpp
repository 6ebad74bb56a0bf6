#include "kelmovie/support/OverlayRecording.h"

#include "playback/keys/KeyOverlayStyle.h"
#include "support/PaintedPart.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QSignalSpy>
#include <QtTest>

#include <climits>
#include <functional>

using R = OverlayRecording;
using C = KelMovieConfig;
using kel::KeyOverlayStyle;
using Change = std::function<void(C &)>;
Q_DECLARE_METATYPE(Change)

namespace
{

QRect changedPart(QImage before, const QImage &after)
{
    QPainter painter(&before);
    painter.setCompositionMode(QPainter::CompositionMode_Difference);
    painter.drawImage(0, 0, after);
    painter.end();
    return paintedPart(before, qRgb(0, 0, 0));
}

} // namespace

/// Compares composed frames of recordings and settings.
class PlaybackSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { gKelMovieConfig = withBar(); }
    void defaultsShowClicksAndShortcutsOnly();
    void settingsTakeEffect_data();
    void settingsTakeEffect();
    void invalidSettingsAreClamped();
    void pixelRatioEnlargesOverlays();
    void endHidesEffectsAndKeys();

private:
    static C withBar()
    {
        C config;
        config.playbackProgressEnable = true;
        config.playbackProgressDisplayMode = 1;
        return config;
    }
    QImage imageAt(int frame) const { return m_recording.imageAt(*m_recording.load(), frame); }

    OverlayRecording m_recording;
};

void PlaybackSettingsTest::defaultsShowClicksAndShortcutsOnly()
{
    gKelMovieConfig = C();
    const QImage plain = imageAt(R::PlainFrame);
    for (const auto &[frame, shows] :
         {std::pair(R::ClickFrame, true), {R::ShortcutFrame, true}, {R::LetterFrame, false}, {R::WheelFrame, true}})
        QCOMPARE(imageAt(frame) != plain, shows);
}

void PlaybackSettingsTest::settingsTakeEffect_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<Change>("change");

    const auto row = [](const char *name, int frame, const Change &change) { QTest::newRow(name) << frame << change; };
    row("mouse on", R::ClickFrame, [](C &c) { c.playbackMouseEnable = false; });
    row("mouse buttons", R::ClickFrame, [](C &c) { c.playbackMouseShowActionButton = 6; });
    row("mouse wheel", R::WheelFrame, [](C &c) { c.playbackMouseShowWheel = false; });
    row("mouse color", R::ClickFrame, [](C &c) { c.playbackMouseColor = Qt::red; });
    row("mouse size", R::ClickFrame, [](C &c) { c.playbackMouseSize = 30; });
    row("click effect", R::ClickFrame, [](C &c) { c.playbackMouseClickEffect = 2; });
    row("replaced clicks", R::SecondClickFrame, [](C &c) { c.playbackMouseReplaceEffects ^= true; });
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
    row("letters per box", R::LetterFrame, [](C &c) {
        c.playbackKeyboardShowKeyType = 15;
        c.playbackKeyboardMaxContinueChar = 3;
    });
    row("progress on", R::PlainFrame, [](C &c) { c.playbackProgressEnable = false; });
    row("time box", R::PlainFrame, [](C &c) { c.playbackProgressDisplayMode = 0; });
    row("bar color", R::PlainFrame, [](C &c) { c.playbackProgressFgColor = Qt::red; });
    row("bar background", R::PlainFrame, [](C &c) { c.playbackProgressBgColor = Qt::red; });
    row("bar height", R::PlainFrame, [](C &c) { c.playbackProgressSize = 40; });
    row("bar corners", R::PlainFrame, [](C &c) { c.playbackProgressRound = 3; });
    row("bar steps", R::PlainFrame, [](C &c) { c.playbackProgressGapTime = 1'000; });
}

void PlaybackSettingsTest::settingsTakeEffect()
{
    QFETCH(int, frame);
    QFETCH(Change, change);

    const auto early = m_recording.load();
    const QImage before = m_recording.imageAt(*early, frame);
    change(gKelMovieConfig);
    const auto late = m_recording.load();
    const QImage after = m_recording.imageAt(*late, frame);
    QVERIFY(after != before);

    // When playback starts.
    QVERIFY(m_recording.image(*early) == before);
    early->play();
    early->pause();
    early->seek(0);
    QVERIFY(m_recording.imageAt(*early, frame) == after);

    // When a panel reports a change: at once, except that running effects only change with the next click.
    gKelMovieConfig = withBar();
    QSignalSpy repaints(late.get(), &KelPlaybackTrackManager::sigFrameChanged);
    late->updateSettings();
    QCOMPARE(repaints, (QList<QVariantList>{{frame}}));
    const bool isEffect = frame == R::ClickFrame || frame == R::SecondClickFrame || frame == R::WheelFrame;
    QVERIFY(isEffect || m_recording.image(*late) == before);
    QVERIFY(m_recording.imageAt(*late, frame) == before);
}

void PlaybackSettingsTest::invalidSettingsAreClamped()
{
    struct Case {
        int C::*setting;
        int frame;
        int invalid;
        int used;
        int other; // the nearest that looks different
    };
    for (const Case &c : {Case{&C::playbackMouseSize, R::ClickFrame, -1, 0, 5},
                          {&C::playbackMouseClickEffect, R::ClickFrame, INT_MAX, 0, 1},
                          {&C::playbackMouseWheelEffect, R::WheelFrame, -1, 0, 1},
                          {&C::playbackKeyboardKeepTime, R::ShortcutFrame, INT_MIN, 0, 1},
                          {&C::playbackKeyboardDisplayPos, R::ShortcutFrame, INT_MAX, 1, 2},
                          {&C::playbackKeyboardFontSizePx, R::ShortcutFrame, INT_MIN, 1, 2},
                          {&C::playbackKeyboardFontSizePx, R::ShortcutFrame, INT_MAX, 400, 22},
                          {&C::playbackKeyboardHistoryFontSize, R::ShortcutFrame, -1, 0, 1},
                          {&C::playbackKeyboardHistoryFontSize, R::ShortcutFrame, INT_MAX, 400, 13},
                          {&C::playbackKeyboardMaxHistoryCount, R::ShortcutFrame, INT_MIN, 1, 2},
                          {&C::playbackKeyboardMaxContinueChar, R::LetterFrame, -1, 1, 2},
                          {&C::playbackProgressSize, R::PlainFrame, -1, 1, 6},
                          {&C::playbackProgressSize, R::PlainFrame, INT_MAX, 400, 399},
                          {&C::playbackProgressRound, R::PlainFrame, INT_MIN, 0, 1},
                          {&C::playbackProgressGapTime, R::PlainFrame, INT_MIN, 0, 1'000}}) {
        gKelMovieConfig = withBar();
        gKelMovieConfig.playbackKeyboardShowKeyType = 15;
        gKelMovieConfig.*c.setting = c.used;
        const QImage used = imageAt(c.frame);
        gKelMovieConfig.*c.setting = c.invalid;
        QCOMPARE(imageAt(c.frame), used);
        gKelMovieConfig.*c.setting = c.other;
        QVERIFY2(imageAt(c.frame) != used, qPrintable(QString("%1 used as %2").arg(c.invalid).arg(c.used)));
    }
    gKelMovieConfig = C();
    gKelMovieConfig.playbackKeyboardFontColor = KeyOverlayStyle().fontColor;
    gKelMovieConfig.playbackKeyboardBgColor = KeyOverlayStyle().bgColor;
    const QImage used = imageAt(R::ShortcutFrame);
    gKelMovieConfig.playbackKeyboardFontColor = gKelMovieConfig.playbackKeyboardBgColor = QColor();
    QCOMPARE(imageAt(R::ShortcutFrame), used);
}

/// On a desktop of twice the resolution, effects, keys and time are twice as large.
void PlaybackSettingsTest::pixelRatioEnlargesOverlays()
{
    const OverlayRecording large(2.0);
    for (const int frame : {R::ClickFrame, R::WheelFrame, R::ShortcutFrame, R::PlainFrame}) {
        gKelMovieConfig = C();
        const auto sizeIn = [frame](const OverlayRecording &recording) {
            const auto manager = recording.load();
            gKelMovieConfig.playbackProgressEnable = false;
            manager->updateSettings();
            const QImage plain = recording.imageAt(*manager, R::PlainFrame);
            gKelMovieConfig.playbackProgressEnable = frame == R::PlainFrame;
            manager->updateSettings();
            return changedPart(plain, recording.imageAt(*manager, frame)).size();
        };
        const QSize once = sizeIn(m_recording);
        const QSize twice = sizeIn(large);
        QVERIFY(twice.width() > 1.7 * once.width() && twice.height() > 1.7 * once.height());
    }
}

void PlaybackSettingsTest::endHidesEffectsAndKeys()
{
    gKelMovieConfig = C();
    const QImage plain = imageAt(R::PlainFrame);
    for (const int frame : {R::ClickFrame, R::WheelFrame, R::ShortcutFrame}) {
        const auto manager = m_recording.load();
        QVERIFY(m_recording.imageAt(*manager, frame) != plain);
        manager->play();
        manager->stop();
        QCOMPARE(m_recording.image(*manager), plain);
    }
}

QTEST_MAIN(PlaybackSettingsTest)
#include "tst_playback_settings.moc"
