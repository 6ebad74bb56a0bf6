#include "playback/tracks/KelPlaybackCountdownTrack.h"
#include "support/TestTable.h"

#include <QPainter>
#include <QtTest>

namespace
{

const QSize kSize(400, 120);

QImage painted(KelPlaybackCountdownTrack &track)
{
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::green);
    QPainter painter(&image);
    track.paint(&painter);
    return image;
}

/// The bounding rectangle of the painted pixels.
QRect touched(const QImage &image)
{
    QRect rect;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) != Qt::green)
                rect |= QRect(x, y, 1, 1);
    return rect;
}

/// The expected time box, with margins and corners.
QImage referenceBox(const QString &text, double scale, int margin, double radius)
{
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::green);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font("Arial");
    font.setBold(true);
    font.setPixelSize(qRound(16 * 1.33 * scale));
    const QSize size = QFontMetrics(font).size(Qt::TextSingleLine, text);
    const QRect box(kSize.width() - margin - size.width() - 8, kSize.height() - margin - size.height() - 4,
                    size.width() + 16, size.height() + 8);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 128));
    painter.drawRoundedRect(box, radius, radius);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(box, Qt::AlignCenter, text);
    return image;
}

} // namespace

class PlaybackCountdownTrackTest : public QObject
{
    Q_OBJECT

private slots:
    void timeBox_data();
    void timeBox();
    void followsRecordingTime();
    void bar_data();
    void bar();
    void drawsNothing_data();
    void drawsNothing();

private:
    static std::unique_ptr<KelPlaybackCountdownTrack> makeTrack(int totalFrames, int fps)
    {
        auto track = std::make_unique<KelPlaybackCountdownTrack>(QString(), nullptr);
        track->setArea(QRect(QPoint(30, 40), kSize));
        track->setTotalFrames(totalFrames);
        track->setFps(fps);
        return track;
    }
};

void PlaybackCountdownTrackTest::timeBox_data()
{
    QTest::addColumn<int>("total");
    QTest::addColumn<int>("fps");
    QTest::addColumn<double>("speed");
    QTest::addColumn<int>("frame");
    QTest::addColumn<QPoint>("range"); // start and end, or null
    QTest::addColumn<QString>("text");

    QTest::newRow("truncated seconds") << 65 * 25 << 25 << 1.0 << 49 << QPoint() << "00:01/01:05";
    QTest::newRow("hours") << 3725 * 10 << 10 << 1.0 << 36000 << QPoint() << "01:00:00/01:02:05";
    QTest::newRow("double speed") << 65 * 25 << 25 << 2.0 << 100 << QPoint() << "00:02/00:32";
    QTest::newRow("before the first frame") << 250 << 25 << 1.0 << -5 << QPoint() << "00:00/00:10";
    QTest::newRow("within a range") << 2500 << 25 << 1.0 << 300 << QPoint(250, 500) << "00:02/00:10";
    QTest::newRow("before a range") << 2500 << 25 << 1.0 << 3 << QPoint(250, 500) << "00:00/00:10";
    QTest::newRow("after a range") << 2500 << 25 << 0.5 << 900 << QPoint(250, 500) << "00:20/00:20";
}

void PlaybackCountdownTrackTest::timeBox()
{
    QFETCH(int, total);
    QFETCH(int, fps);
    QFETCH(double, speed);
    QFETCH(int, frame);
    QFETCH(QPoint, range);
    QFETCH(QString, text);

    const auto track = makeTrack(total, fps);
    track->setScale(1.5);
    track->setSpeed(speed);
    track->seekToFrame(frame);
    if (!range.isNull())
        track->setRange(kel::RecordingTimeline::Range{range.x(), range.y(), 0, 0, 0});
    QCOMPARE(painted(*track), range.isNull() ? referenceBox(text, 1.5, 10, 9) : referenceBox(text, 1.5, 15, 6));
}

/// Of 250 frames at nominally 25 a second, which took 26.5 seconds because ticks came late.
void PlaybackCountdownTrackTest::followsRecordingTime()
{
    const kel::RecordingTimeline timeline(250, 25, 26'500);
    KelPlaybackRules rules;
    rules.timeFollowsRecording = true;
    const auto track = makeTrack(timeline.totalFrames(), timeline.fps());
    track->setContext(timeline, rules);
    const auto text = [&](int frame) {
        track->seekToFrame(frame);
        return painted(*track);
    };
    QCOMPARE(text(0), referenceBox("00:00/00:26", 1, 10, 6));
    QCOMPARE(text(125), referenceBox("00:13/00:26", 1, 10, 6));
    QCOMPARE(text(249), referenceBox("00:26/00:26", 1, 10, 6));
    track->setRange(timeline.rangeOf(6'000, 16'000));
    track->setSpeed(2.0);
    QCOMPARE(text(10), referenceBox("00:00/00:05", 1, 15, 4));
    QCOMPARE(text(125), referenceBox("00:03/00:05", 1, 15, 4));
    QCOMPARE(text(timeline.rangeOf(6'000, 16'000).lastFrame), referenceBox("00:05/00:05", 1, 15, 4));
}

void PlaybackCountdownTrackTest::bar_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("intervalMs");
    QTest::addColumn<int>("played"); // pixels

    QTest::newRow("begin") << 0 << 0 << 0;
    QTest::newRow("half") << 50 << 0 << 200;
    QTest::newRow("truncated") << 33 << 0 << 132;
    QTest::newRow("beyond the end") << 500 << 0 << 400;
    QTest::newRow("with an interval") << 59 << 1000 << 200;
    QTest::newRow("last interval incomplete") << 99 << 1000 << 396;
}

void PlaybackCountdownTrackTest::bar()
{
    QFETCH(int, frame);
    QFETCH(int, intervalMs);
    QFETCH(int, played);

    const auto track = makeTrack(100, 25);
    track->setDisplayMode(KelPlaybackCountdownTrack::ProgressBar);
    track->setBarColors(Qt::red, Qt::blue);
    track->setBarHeight(7);
    track->setBarInterval(intervalMs);
    track->seekToFrame(frame);
    const QImage image = painted(*track);
    QCOMPARE(touched(image), QRect(0, kSize.height() - 7, kSize.width(), 7));
    const int y = kSize.height() - 1;
    if (played > 0)
        QCOMPARE(image.pixelColor(played - 1, y), QColor(Qt::red));
    if (played < kSize.width())
        QCOMPARE(image.pixelColor(played, y), QColor(Qt::blue));
}

void PlaybackCountdownTrackTest::drawsNothing_data()
{
    const TestTable<int, int, int, bool> row("total", "fps", "mode", "enabled");
    row("no frames, box", 0, 25, 0, true);
    row("no frames, bar", 0, 25, 1, true);
    row("no rate, box", 100, 0, 0, true);
    row("unknown mode", 100, 25, 2, true);
    row("off", 100, 25, 0, false);
}

void PlaybackCountdownTrackTest::drawsNothing()
{
    QFETCH(int, total);
    QFETCH(int, fps);
    QFETCH(int, mode);
    QFETCH(bool, enabled);

    const auto track = makeTrack(total, fps);
    track->setDisplayMode(mode);
    track->setEnabled(enabled);
    QCOMPARE(track->isVisible(), enabled);
    QVERIFY(touched(painted(*track)).isEmpty());
    track->paint(nullptr);
}

QTEST_MAIN(PlaybackCountdownTrackTest)
#include "tst_playback_countdown_track.moc"
