#include "kelmovie/support/RecordingOnDisk.h"

#include "lottie/KelLottie.h"
#include "playback/mouse/ClickPlayer.h"
#include "playback/mouse/EffectTiming.h"
#include "playback/mouse/KelMouseButtonLottie.h"
#include "playback/mouse/KelMouseWheelLottie.h"
#include "recording/RecordingTimeline.h"

#include <QPainter>
#include <QtTest>

#include <cmath>
#include <functional>

using namespace kel;

namespace
{

constexpr QPoint kPointer(7, 7);

/// What `paint` paints of an effect in a square of 64 pixels.
QImage painted(const std::function<void(QPainter *, const QRectF &)> &paint)
{
    QImage image(128, 128, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(&painter, QRectF(32, 32, 64, 64));
    return image;
}

/// Frame 8 of an animation; empty without a name.
QImage expected(const QString &animation, double scale, double angle)
{
    return painted([&](QPainter *painter, const QRectF &square) {
        QRectF target(QPointF(), square.size() * scale);
        target.moveCenter(square.center());
        if (!animation.isEmpty())
            KelLottie(":/KelScreenRecord/" + animation + ".json").paint(painter, 8, target, angle);
    });
}

/// "L250": the effect of a left click at frame 250 or after 250 ms; "W0-": a turn down. With an @ if it is at the
/// pointer.
QString describe(const std::vector<ShownMouseEffect> &effects)
{
    QStringList all;
    for (const ShownMouseEffect &effect : effects) {
        const QString name = effect.isWheel ? "W" : QStringList{"L", "R", "M"}.value(effect.variant);
        all << name + QString::number(effect.frame) + (effect.isWheel ? effect.variant ? "-" : "+" : "") +
                   (effect.position == kPointer ? "@" : "");
    }
    return all.join(' ');
}

} // namespace

class MouseEffectsTest : public QObject
{
    Q_OBJECT

private slots:
    void clickEffects();
    void wheelEffects();
    void timing();
    void effects_data();
    void effects();
    void effectsInTime_data();
    void effectsInTime();

private:
    RecordingOnDisk files;
};

void MouseEffectsTest::clickEffects()
{
    struct Case {
        QString animation;
        int frames;
        int hold;
        int holdRaw;
        bool flag;
        double scale;
    };
    int type = 0;
    for (const Case &c : {Case{"", 0, 0, 0, false, 1},
                          {"click_ray", 24, 4, 9, true, 1},
                          {"click_floral", 24, 0, 1, false, 1.3},
                          {"click_fireworks", 24, 6, 12, true, 1.3},
                          {"click_starts", 24, 4, 9, true, 1.3},
                          {"click_ripple", 24, 6, 12, true, 1},
                          {"", 12, 4, 4, true, 1}}) {
        const auto effect = createMouseButtonLottie(30, type);
        QCOMPARE(effect->holdFrameRaw(), c.holdRaw);
        QCOMPARE(effect->holdFrame(), c.hold);
        QCOMPARE(effect->effectFlag(), c.flag);
        QCOMPARE(effect->frameCount(0, true), c.frames);
        QCOMPARE(createMouseButtonLottie(60, type)->frameCount(0, true), 2 * c.frames);
        for (const int button : {0, 1, 2}) {
            // The ray points towards the side of the button.
            const double angle = type != 1 || button == 2 ? 0 : button == 0 ? -50 : 50;
            QCOMPARE(painted([&](QPainter *p, const QRectF &target) { effect->paint(p, 4, target, button); }),
                     expected(c.animation, c.scale, angle));
        }
        ++type;
    }
    QVERIFY(!createMouseButtonLottie(30, -1) && !createMouseButtonLottie(30, type));
}

void MouseEffectsTest::wheelEffects()
{
    QVERIFY(!createMouseWheelLottie(30, -1) && !createMouseWheelLottie(30, 2));
    for (const auto &[type, frames, animation] : {std::tuple(0, 0, ""), {1, 24, "wheel_arrow"}}) {
        const auto effect = createMouseWheelLottie(30, type);
        QCOMPARE(effect->frameCount(), frames);
        for (const auto &[isDown, angle] : {std::pair(1, 0), {0, 180}})
            QCOMPARE(
                painted([&, down = isDown](QPainter *p, const QRectF &target) { effect->paint(p, 4, target, down); }),
                expected(animation, 1, angle));
    }
}

void MouseEffectsTest::timing()
{
    // 60 frames at 60 fps, played at 30 fps.
    QCOMPARE(EffectTiming::playbackFrames(60, 60, 30), 30);
    QCOMPARE(EffectTiming::playbackFrame(9, 60, 30), 4);
    QCOMPARE(EffectTiming::animationFrame(10, 60, 30), 20.0F);
    QCOMPARE(EffectTiming::playbackFrames(5, 60, 30), 3); // halves up
    QCOMPARE(EffectTiming::playbackFrames(-5, 60, 30), -2);
    for (double rate : {0.0, double(NAN), 1e-300}) {
        EffectTiming::playbackFrame(9, rate, 30); // must not be undefined behavior
        QVERIFY(std::abs(EffectTiming::playbackFrames(0, rate, 30)) == 0);
    }
}

void MouseEffectsTest::effects_data()
{
    // Click type 1 and wheel type 1: 24 frames, hold frame 4. "30=L4" seeks to frame 30 and expects this effect,
    // "30=80%" this scale of the pointer; "20-29" only seeks to each of these frames.
    QTest::addColumn<int>("clickType");
    QTest::addColumn<QString>("clicks");
    QTest::addColumn<QString>("seeks");
    QTest::addColumn<bool>("pairsNearest");
    QTest::addColumn<bool>("replaces");

    const auto row = [](const char *name, const char *clicks, const char *seeks, int clickType = 1,
                        bool pairsNearest = false, bool replaces = false) {
        QTest::newRow(name) << clickType << clicks << seeks << pairsNearest << replaces;
    };
    row("short", "1 left down, 4 left up", "0=;1=L0;2=L1;3-4;5=L4;6-23;24=L23;25=");
    row("held", "10 left down, 30 left up",
        "0-9;10=L0@;11-13;14=L4@;15=L4@;16-28;29=L4@;30=L4@;31=L5@;32-47;48=L22@;49=");
    row("held for 499 ms", "10 left down @1, 30 left up @500", "0-9;10=L0");
    row("held for 500 ms", "10 left down @1, 30 left up @501", "0-9;10=L0@");
    row("never released", "5 left down", "0-4;5=L0;6=");
    row("released without a time", "5 left down, 9 left up @0", "0-4;5=L0;6=");
    row("released in the same frame", "2 left down, 3 left up, 50 left down, 50 left up",
        "0-49;50=L0;51=L1;52-72;73=L23");
    row("tapped twice", "2 left down, 2 left up, 19 left down, 20 left up", "0-18;19=L17@");
    row("tapped twice, nearest release", "2 left down, 2 left up, 19 left down, 20 left up", "0-18;19=L17 L0", 1, true);
    row("never pressed", "5 right up", "0-4;5=R0;6=");
    row("released twice", "1 left down, 3 left up, 40 left up", "0-39;40=");
    row("another click while held", "5 left down, 8 left down, 40 left up, 9 right down, 12 right up",
        "0-8;9=L4@ R0;10=L4@ R1");
    const char clicks[] = "1 left down, 2 left up, 3 right down, 4 right up, 5 left down, 6 left up";
    row("clicks", clicks, "0-4;5=L4 R2 L0;6=L5 R3 L1");
    row("clicks that replace", clicks, "0-4;5=R2 L0;6=R3 L1", 1, false, true);
    row("unknown button", "5 side down, 9 side up", "0-4;5=;6=");
    row("wheel", "5 wheel -120", "0-4;5=W0-@;6=W1-@;7-26;27=W22-@;28=");
    row("wheel turned again", "5 wheel -120, 10 wheel -120", "0-9;10=W5-@");
    row("wheel turned again near the end", "5 wheel -120, 25 wheel -120", "0-24;25=W20-@ W0-@");
    row("wheel turned back", "5 wheel -120, 8 wheel 120", "0-7;8=W0+@");
    row("wheel turned back after 14 frames", "5 wheel -120, 19 wheel 120", "0-18;19=W0+@");
    row("wheel turned back after 15 frames", "5 wheel -120, 20 wheel 120", "0-19;20=W15-@");
    row("back to the start", "3 left down, 5 left up", "0-4;0=;1-2;3=L0");
    row("back, but not to the start", "3 left down, 5 left up", "0-4;1=L2");
    row("skipped frames", "5 left down, 6 left up, 7 wheel 120", "0;8=L0 W0+@;16=L1 W1+@");
    row("a jump", "5 left down, 6 left up", "0;100=");
    row("a jump over the release", "5 left down, 40 left up", "0-10;100=L5@");
    row("the same frame again", "5 left down, 8 left up", "4;5=L0;5=L1;6=L2");

    row("pointer, held", "10 left down, 30 left up",
        "0-9;10=100%;11=99%;12=95%;13=90%;14;15=81%;16=80%;17-29;30=80%;31=81%;32;33=93%;34-35;36=100%", 6);
    row("pointer, released early", "10 left down, 13 left up", "0-12;13=90%;14=91%;15-18;19=100%", 6);
    row("pointer, tapped", "10 left down, 10 left up", "0-9;10=100%;11-15;16=80%;17-21;22=100%", 6);
    row("pointer, another button", "10 left down, 12 right up, 40 left up", "0-15;16=80%;17-20;21=80%", 6);
    row("pointer, a jump over the release", "10 left down, 40 left up", "0-20;100=81%", 6);
    row("pointer, back to the start", "10 left down, 40 left up", "0-20;0=100%", 6);
    row("pointer, another effect", "10 left down, 40 left up", "0-20;21=100%", 5);
}

void MouseEffectsTest::effects()
{
    QFETCH(QString, clicks);
    QFETCH(QString, seeks);
    QFETCH(int, clickType);
    QFETCH(bool, pairsNearest);
    QFETCH(bool, replaces);
    files.clicks(clicks);
    ClickPlayer player;
    player.setClickType(clickType);
    player.setWheelType(1);
    player.setReplaceSameButton(replaces);
    QVERIFY(player.load(files.filePath("Mouse/mouseclicks-0.json")));
    if (pairsNearest)
        player.pairNearestReleases();
    for (const QString &seek : seeks.split(';')) {
        if (!seek.contains('=')) {
            for (int frame = seek.section('-', 0, 0).toInt(); frame <= seek.section('-', -1).toInt(); ++frame)
                player.seekToFrame(frame);
            continue;
        }
        player.seekToFrame(seek.section('=', 0, 0).toInt());
        const QString seen = seek.endsWith('%') ? QString("%1%").arg(std::lround(player.pointerScale() * 100))
                                                : describe(player.shown(kPointer));
        QCOMPARE(seek.section('=', 0, 0) + '=' + seen, seek);
    }
}

void MouseEffectsTest::effectsInTime_data()
{
    // Clicks and expectations are at ms of the recording. Click type 1 and wheel type 1 last 800 ms, hold at 150 ms;
    // type 6 shrinks the pointer for 200 ms and grows it for 200 ms.
    QTest::addColumn<int>("clickType");
    QTest::addColumn<QString>("clicks");
    QTest::addColumn<QString>("seeks");
    QTest::addColumn<bool>("replaces");
    const auto row = [](const char *name, const char *clicks, const char *seeks, int clickType = 1,
                        bool replaces = false) { QTest::newRow(name) << clickType << clicks << seeks << replaces; };
    row("tap", "500 left down, 500 left up", "250=;500=L0;750=L250;1250=L750;1500=");
    row("short", "500 left down, 750 left up", "500=L0;750=L250;1250=L750;1500=");
    row("held", "500 left down, 3000 left up", "500=L0@;750=L150@;2750=L150@;3000=L150@;3250=L400@;3500=L650@;3750=");
    row("never released", "500 left down", "500=L0;1250=L750;1500=");
    row("never pressed", "500 left up", "500=;750=");
    row("release not recorded", "500 left down, 2000 left down, 2250 left up", "500=L0;1250=L750;1500=;2000=L0");
    row("taps", "500 left down, 500 left up, 1000 left down, 1000 left up", "750=L250;1000=L500 L0;1250=L750 L250");
    row("taps that replace", "500 left down, 500 left up, 750 right down, 750 right up, 1000 left down, 1000 left up",
        "750=L250 R0;1000=R250 L0;1250=R500 L250", 1, true);
    row("two buttons", "500 left down, 750 right down, 1000 right up, 2000 left up",
        "750=L150@ R0;1250=L150@ R500;1750=L150@");
    row("click after a long press", "500 left down, 1500 left up, 1750 left down, 1750 left up", "1750=L400@ L0");
    row("unknown button", "500 side down, 750 side up", "500=");
    row("wheel", "500 wheel -120", "500=W0-@;1250=W750-@;1500=");
    row("wheel turned again", "500 wheel 120, 1000 wheel 120", "1000=W500+@;1250=W750+@;1500=");
    row("wheel turned again near the end", "500 wheel 120, 1250 wheel 120", "1250=W0+@;2000=W750+@");
    row("wheel turned back", "500 wheel 120, 1000 wheel -120", "750=W250+@;1000=W0-@;1250=W250-@");

    row("pointer, tapped", "500 left down, 500 left up", "500=100%;750=83%;1000=100%", 6);
    row("pointer, held", "500 left down, 2000 left up", "750=80%;2000=80%;2250=100%", 6);
    row("pointer, not long", "500 left down, 750 left up", "750=80%;1000=100%", 6);
    row("pointer, another button", "500 left down, 750 right down, 750 right up, 2000 left up", "1250=80%", 6);
    row("pointer, another effect", "500 left down, 2000 left up", "1000=100%", 5);
}

/// A moment shows the same at any frame rate and in any order.
void MouseEffectsTest::effectsInTime()
{
    QFETCH(QString, clicks);
    QFETCH(QString, seeks);
    QFETCH(int, clickType);
    QFETCH(bool, replaces);
    for (const int fps : {20, 24, 60}) {
        QJsonArray records;
        for (const QJsonValue &value : mouseClicks(clicks)) {
            QJsonObject record = value.toObject();
            record["timestamp"] = record["frame"].toInt() + 1;
            record["frame"] = record["frame"].toInt() * fps / 1000;
            records.append(record);
        }
        files.clicks(records);
        const RecordingTimeline timeline(10 * fps, fps, 10'000);
        ClickPlayer player;
        player.setWheelType(1);
        player.setReplaceSameButton(replaces);
        QVERIFY(player.load(files.filePath("Mouse/mouseclicks-0.json")));
        player.followTime(timeline);
        player.pairNearestReleases();
        const auto check = [&](const QString &seek) {
            const int ms = seek.section('=', 0, 0).toInt();
            player.seekToFrame(ms * fps / 1000);
            const QString seen = seek.endsWith('%') ? QString("%1%").arg(std::lround(player.pointerScale() * 100))
                                                    : describe(player.shown(kPointer));
            QCOMPARE(QString::number(ms) + '=' + seen, seek);
        };
        QStringList moments = seeks.split(';');
        for (int type : {4, clickType}) { // changing a setting on the way
            player.setClickType(type);
            player.reset();
        }
        for (const QString &moment : qAsConst(moments))
            check(moment);
        std::reverse(moments.begin(), moments.end());
        for (const QString &moment : qAsConst(moments))
            check(moment);
    }
}

QTEST_GUILESS_MAIN(MouseEffectsTest)
#include "tst_mouse_effects.moc"
