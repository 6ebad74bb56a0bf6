#include "playback/tracks/KelPlaybackCountdownTrack.h"
#include "support/PaintedPart.h"
#include "support/TestTable.h"

#include <QPainter>
#include <QtTest>

using kel::RecordingTimeline;
using Range = std::optional<RecordingTimeline::Range>;
Q_DECLARE_METATYPE(Range)

namespace
{

const QSize kSize(400, 120);
constexpr QRgb kPaper = 0xff00ff00;

QImage painted(KelPlaybackCountdownTrack &track)
{
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(kPaper);
    QPainter painter(&image);
    track.paint(&painter);
    return image;
}

/// The expected time box, with margins and corners.
QImage referenceBox(const QString &text, double scale, int margin, double radius)
{
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(kPaper);
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

std::unique_ptr<KelPlaybackCountdownTrack> makeTrack(int totalFrames, int fps)
{
    auto track = std::make_unique<KelPlaybackCountdownTrack>(QString(), nullptr);
    track->setArea(QRect(QPoint(30, 40), kSize));
    track->setTotalFrames(totalFrames);
    track->setFps(fps);
    return track;
}

} // namespace

class PlaybackCountdownTrackTest : public QObject
{
    Q_OBJECT

private slots:
    void timeBox_data();
    void timeBox();
    void bar_data();
    void bar();
    void drawsNothing_data();
    void drawsNothing();

private:
    /// Of 250 frames at nominally 25 a second, which took 26.5 seconds because ticks came late.
    const RecordingTimeline m_late{250, 25, 26'500};
};

void PlaybackCountdownTrackTest::timeBox_data()
{
    // total: frames; 0 for the recording with late ticks, whose time is followed.
    const TestTable<int, int, double, int, Range, QString> row("total", "fps", "speed", "frame", "range", "text");
    const Range frames = RecordingTimeline::Range{250, 500, 0, 0, 0};
    row("truncated seconds", 65 * 25, 25, 1.0, 49, {}, "00:01/01:05");
    row("hours", 3725 * 10, 10, 1.0, 36000, {}, "01:00:00/01:02:05");
    row("one frame a second", 10, 1, 1.0, 5, {}, "00:05/00:10");
    row("double speed", 65 * 25, 25, 2.0, 100, {}, "00:02/00:32");
    row("before the first frame", 250, 25, 1.0, -5, {}, "00:00/00:10");
    row("within a range", 2500, 25, 1.0, 300, frames, "00:02/00:10");
    row("before a range", 2500, 25, 1.0, 3, frames, "00:00/00:10");
    row("after a range", 2500, 25, 0.5, 900, frames, "00:20/00:20");
    const Range times = m_late.rangeOf(6'000, 16'000);
    row("late ticks", 0, 25, 1.0, 0, {}, "00:00/00:26");
    row("late ticks, half", 0, 25, 1.0, 125, {}, "00:13/00:26");
    row("late ticks, end", 0, 25, 1.0, 249, {}, "00:26/00:26");
    row("late ticks, before a range", 0, 25, 2.0, 10, times, "00:00/00:05");
    row("late ticks, in a range", 0, 25, 2.0, 125, times, "00:03/00:05");
    row("late ticks, end of a range", 0, 25, 2.0, times->lastFrame, times, "00:05/00:05");
}

void PlaybackCountdownTrackTest::timeBox()
{
    QFETCH(int, total);
    QFETCH(int, fps);
    QFETCH(double, speed);
    QFETCH(int, frame);
    QFETCH(Range, range);
    QFETCH(QString, text);

    const auto track = makeTrack(total > 0 ? total : m_late.totalFrames(), fps);
    KelPlaybackRules rules;
    rules.timeFollowsRecording = total == 0;
    track->setContext(m_late, rules);
    track->setScale(1.5);
    track->setSpeed(speed);
    track->setRange(range);
    QCOMPARE(track->moveToFrame(frame), !text.startsWith("00:00")); // whether the image changes
    QCOMPARE(painted(*track), range ? referenceBox(text, 1.5, 15, 6) : referenceBox(text, 1.5, 10, 9));
    track->setCornerRadius(2);
    QCOMPARE(painted(*track), referenceBox(text, 1.5, range ? 15 : 10, 2));
}

void PlaybackCountdownTrackTest::bar_data()
{
    const TestTable<int, int, int, bool> row("frame", "intervalMs", "played", "isLate"); // played: pixels
    row("begin", 0, 0, 0, false);
    row("half", 50, 0, 200, false);
    row("truncated", 33, 0, 132, false);
    row("last but one", 98, 0, 392, false);
    row("beyond the end", 500, 0, 400, false);
    row("with an interval", 59, 1000, 200, false);
    row("last interval incomplete", 99, 1000, 396, false);
    row("late ticks", 125, 0, 200, true);
    row("late ticks, with an interval", 125, 5000, 150, true);
    row("late ticks, end", 249, 5000, 400, true);
}

void PlaybackCountdownTrackTest::bar()
{
    QFETCH(int, frame);
    QFETCH(int, intervalMs);
    QFETCH(int, played);
    QFETCH(bool, isLate);

    const auto track = makeTrack(isLate ? 250 : 100, 25);
    KelPlaybackRules rules;
    rules.timeFollowsRecording = isLate;
    track->setContext(m_late, rules);
    track->setDisplayMode(KelPlaybackCountdownTrack::ProgressBar);
    track->setBarColors(Qt::red, Qt::blue);
    track->setBarHeight(7);
    track->setBarInterval(intervalMs);
    QCOMPARE(track->moveToFrame(frame), played > 0);
    const QImage image = painted(*track);
    QCOMPARE(paintedPart(image, kPaper), QRect(0, kSize.height() - 7, kSize.width(), 7));
    const int y = kSize.height() - 1;
    QVERIFY(played == 0 || image.pixelColor(played - 1, y) == QColor(Qt::red));
    QVERIFY(played == kSize.width() || image.pixelColor(played, y) == QColor(Qt::blue));
    track->setCornerRadius(3);
    QVERIFY(painted(*track).pixelColor(0, y) != QColor(played > 0 ? Qt::red : Qt::blue));
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
    QVERIFY(!track->moveToFrame(99));
    QVERIFY(paintedPart(painted(*track), kPaper).isEmpty());
    track->paint(nullptr);
}

QTEST_MAIN(PlaybackCountdownTrackTest)
#include "tst_playback_countdown_track.moc"
