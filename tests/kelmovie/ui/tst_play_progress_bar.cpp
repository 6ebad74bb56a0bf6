#include "support/TestTable.h"

#include <KelMovie/PlayProgressBar.h>

#include <QAccessible>
#include <QApplication>
#include <QtTest>

namespace
{

constexpr int kHeight = 18;
constexpr int kDurationMs = 1000;

} // namespace

/// One pixel of the bar is one millisecond, so that gestures can be written in milliseconds.
class PlayProgressBarTest : public QObject
{
    Q_OBJECT

private slots:
    void gestures_data();
    void gestures();
    void keys();
    void accessibleInterfaceIsASlider();
    void playTimeIsDeferredWhileDragging();
    void rangeAndDuration();
    void sizes();
    void painting();
    void cursorOverHandles();

private:
    static std::unique_ptr<PlayProgressBar> makeBar(bool rangeEditable);
    void report(const PlayProgressBar *bar);
    static void perform(PlayProgressBar *bar, const QString &gesture);
    static QPoint at(double ms) { return {kHeight / 2 + int(ms), kHeight / 2}; }
    static QColor pixel(PlayProgressBar *bar, int ms) { return bar->grab().toImage().pixelColor(at(ms)); }

    QStringList m_report;
};

std::unique_ptr<PlayProgressBar> PlayProgressBarTest::makeBar(bool rangeEditable)
{
    auto bar = std::make_unique<PlayProgressBar>(rangeEditable);
    bar->setBarHeight(12);
    bar->resize(kDurationMs + kHeight, kHeight);
    bar->setDuration(kDurationMs);
    bar->setPlayRange(200, 800);
    bar->setPlayTime(400);
    return bar;
}

/// Records the signals of a bar as text.
void PlayProgressBarTest::report(const PlayProgressBar *bar)
{
    m_report.clear();
    connect(bar, &PlayProgressBar::sigPlayTimePress, this, [this] { m_report << "press"; });
    connect(bar, &PlayProgressBar::sigPlayTimeChanged, this, [this](int ms) { m_report << QString::number(ms); });
    connect(bar, &PlayProgressBar::sigPlayTimeRelease, this, [this] { m_report << "release"; });
    connect(bar, &PlayProgressBar::sigRangeAdjustStart, this, [this](int t) { m_report << QString("start%1").arg(t); });
    connect(bar, &PlayProgressBar::sigPlayRangeChanged, this,
            [this](int start, int end, int type) { m_report << QString("%1-%2/%3").arg(start).arg(end).arg(type); });
    connect(bar, &PlayProgressBar::sigRangeAdjustEnd, this, [this](int t) { m_report << QString("end%1").arg(t); });
}

/// A gesture is the positions in ms of a press, any moves and the release: "200 300 500".
void PlayProgressBarTest::perform(PlayProgressBar *bar, const QString &gesture)
{
    const QStringList places = gesture.split(' ');
    const QPoint last = at(places.last().toDouble());
    QTest::mousePress(bar, Qt::LeftButton, {}, at(places.first().toDouble()));
    for (const QString &place : places.mid(1)) {
        QMouseEvent move(QEvent::MouseMove, at(place.toDouble()), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(bar, &move);
    }
    QTest::mouseRelease(bar, Qt::LeftButton, {}, last);
}

void PlayProgressBarTest::gestures_data()
{
    const TestTable<QString, QString, bool> row("gesture", "expected", "rangeEditable");
    row("seek", "300", "press 300 release", true);
    row("seek and drag", "300 350 310", "press 300 350 310 release", true);
    row("dragged out of the range", "300 100 950", "press 300 200 800 release", true);
    row("before the range", "100 300", "", true);
    row("after the range", "900 300", "", true);
    row("start handle", "200 250 150", "start0 250-800/0 150-800/0 end0", true);
    row("end handle", "800 700 900", "start1 200-700/1 200-900/1 end1", true);
    row("handles stop at the ends of the recording", "200 -50 1100", "start0 0-800/0 800-1000/0 end1", true);
    row("start handle past the end, and on", "200 850 900 700", "start0 800-850/0 800-900/1 700-800/1 end0", true);
    row("end handle past the start, and on", "800 150 100 300", "start1 150-200/1 100-200/0 200-300/0 end1", true);
    row("empty range", "200 800", "start0 800-800/0 end0", true);
    row("edge of the handle", "202 210", "start0 210-800/0 end0", true);
    row("next to the handle", "203 210", "press 203 210 release", true);
    row("on a handle, not editable", "200 300", "press 200 300 release", false);
    row("on its outer half, not editable", "199 300", "", false);
}

void PlayProgressBarTest::gestures()
{
    QFETCH(bool, rangeEditable);
    QFETCH(QString, gesture);
    const auto bar = makeBar(rangeEditable);
    report(bar.get());
    perform(bar.get(), gesture);
    QTEST(m_report.join(' '), "expected");
    QVERIFY(!bar->isDragging());
    QVERIFY(bar->rangeStartMs() <= bar->rangeEndMs());
    QTest::mouseClick(bar.get(), Qt::RightButton, {}, at(300));
    QTEST(m_report.join(' '), "expected");
}

void PlayProgressBarTest::keys()
{
    const auto reportOf = [this](Qt::Key key, Qt::KeyboardModifiers modifiers = {}, bool rangeEditable = true,
                                 int playTime = 400) {
        const auto bar = makeBar(rangeEditable);
        bar->setPlayTime(playTime);
        report(bar.get());
        QTest::keyClick(bar.get(), key, modifiers);
        return m_report.join(' ');
    };
    QCOMPARE(reportOf(Qt::Key_Right, Qt::ControlModifier), "press 500 release");
    QCOMPARE(reportOf(Qt::Key_Left), "press 200 release"); // stops at the start of the range
    QCOMPARE(reportOf(Qt::Key_End), "press 800 release");
    QCOMPARE(reportOf(Qt::Key_I), "start0 400-800/0 end0"); // trims the start
    QCOMPARE(reportOf(Qt::Key_O), "start1 200-400/1 end1");
    QCOMPARE(reportOf(Qt::Key_O, {}, false), "");
    // From outside of the range, the other end follows.
    QCOMPARE(reportOf(Qt::Key_I, {}, true, 900), "start0 900-900/0 end0");
    QCOMPARE(reportOf(Qt::Key_O, {}, true, 100), "start1 100-100/1 end1");
}

void PlayProgressBarTest::accessibleInterfaceIsASlider()
{
    const auto bar = makeBar(true);
    report(bar.get());
    QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(bar.get());
    QCOMPARE(accessible->role(), QAccessible::Slider);
    QAccessibleValueInterface *const value = accessible->valueInterface();
    QCOMPARE(value->currentValue().toInt(), 400);
    QCOMPARE(value->maximumValue().toInt(), 800);
    value->setCurrentValue(900);
    QCOMPARE(m_report.join(' '), QString("press 800 release"));
    QCOMPARE(value->currentValue().toInt(), 800);
}

void PlayProgressBarTest::playTimeIsDeferredWhileDragging()
{
    const auto bar = makeBar(true);
    const QColor played = bar->playedColor().lighter(120);
    QTest::mousePress(bar.get(), Qt::LeftButton, {}, at(600));
    bar->setPlayTime(300);
    QCOMPARE(pixel(bar.get(), 500), played);
    QTest::mouseRelease(bar.get(), Qt::LeftButton, {}, at(600));
    QVERIFY(pixel(bar.get(), 400) != played);
    QCOMPARE(pixel(bar.get(), 250), played);

    // A later move of the mouse overrides the reported time.
    QTest::mousePress(bar.get(), Qt::LeftButton, {}, at(600));
    bar->setPlayTime(300);
    QMouseEvent move(QEvent::MouseMove, at(700), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(bar.get(), &move);
    QTest::mouseRelease(bar.get(), Qt::LeftButton, {}, at(700));
    QCOMPARE(pixel(bar.get(), 680), played);
}

void PlayProgressBarTest::rangeAndDuration()
{
    const auto bar = makeBar(true);
    bar->setDuration(kDurationMs);
    QCOMPARE(bar->rangeStartMs(), 200);
    bar->setDuration(2000);
    QCOMPARE(bar->rangeStartMs(), 0);
    QCOMPARE(bar->rangeEndMs(), 2000);

    PlayProgressBar empty(true);
    empty.resize(100, 18);
    empty.grab();
    report(&empty);
    perform(&empty, "0 50 20");
    QTest::keyClick(&empty, Qt::Key_Right);
    QVERIFY(!m_report.contains("-2147483648"));
}

void PlayProgressBarTest::sizes()
{
    PlayProgressBar bar(false);
    QCOMPARE(bar.sizeHint().height(), 20);
    QVERIFY(bar.setProperty("barHeight", 12));
    QCOMPARE(bar.height(), 18);
    bar.setBarHeight(15);
    QCOMPARE(bar.height(), 23);
    QVERIFY(bar.setProperty("playedColor", QColor(Qt::blue)));
    QCOMPARE(bar.playedColor(), QColor(Qt::blue));
}

void PlayProgressBarTest::painting()
{
    const auto bar = makeBar(true);
    bar->setPlayedColor(QColor(0, 100, 200));
    QCOMPARE(pixel(bar.get(), 100), QColor(208, 208, 208));
    QCOMPARE(pixel(bar.get(), 600), QColor(189, 189, 189));
    QCOMPARE(pixel(bar.get(), 300), QColor(0, 100, 200).lighter(120));
    QCOMPARE(pixel(bar.get(), 200), QColor(0, 100, 200)); // the handle
    QCOMPARE(pixel(bar.get(), 403), QColor(189, 189, 189));
    QEvent enter(QEvent::Enter);
    QApplication::sendEvent(bar.get(), &enter);
    QCOMPARE(pixel(bar.get(), 402), QColor(0, 100, 200)); // the knob
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(bar.get(), &leave);
    QCOMPARE(pixel(bar.get(), 403), QColor(189, 189, 189));
}

void PlayProgressBarTest::cursorOverHandles()
{
    const auto bar = makeBar(false);
    const auto shapeAt = [&bar](double ms) {
        QMouseEvent move(QEvent::MouseMove, at(ms), Qt::NoButton, Qt::NoButton, {});
        QApplication::sendEvent(bar.get(), &move);
        return bar->cursor().shape();
    };
    QCOMPARE(shapeAt(800), Qt::SizeHorCursor);
    QCOMPARE(shapeAt(500), Qt::ArrowCursor);
    QCOMPARE(shapeAt(200), Qt::SizeHorCursor);
}

QTEST_MAIN(PlayProgressBarTest)
#include "tst_play_progress_bar.moc"
