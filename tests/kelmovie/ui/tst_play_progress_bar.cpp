#include "support/TestTable.h"

#include <KelMovie/PlayProgressBar.h>

#include <QAccessible>
#include <QApplication>
#include <QtTest>

namespace
{

constexpr int kHeight = 18;
constexpr int kMsPerPixel = 10;
constexpr int kDurationMs = 50000;

} // namespace

/// The bar of a recording of 50 seconds, of which 10 to 40 are selected, at second 25 unless a case says otherwise.
class PlayProgressBarTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { makeBar(true); }

    void gestures_data()
    {
        const TestTable<QString, QString, bool, int> row("gesture", "expected", "rangeEditable", "playTime");
        const auto mouse = [&](const char *name, const char *gesture, const char *expected, bool rangeEditable = true) {
            row(name, gesture, expected, rangeEditable, 25000);
        };
        mouse("seek", "15000", "press 15000 release");
        mouse("seek and drag", "15000 17500 15500", "press 15000 17500 15500 release");
        mouse("dragged out of the range", "15000 5000 45000", "press 15000 10000 40000 release");
        mouse("before the range", "5000 15000", "");
        mouse("after the range", "45000 15000", "");
        mouse("start handle", "10000 12500 7500", "start0 12500-40000/0 7500-40000/0 end0");
        mouse("end handle", "40000 35000 45000", "start1 10000-35000/1 10000-45000/1 end1");
        mouse("handles stop at the ends of the recording", "10000 -40 50040", "start0 0-40000/0 40000-50000/0 end1");
        mouse("start handle past the end, and on", "10000 42000 45000 35000",
              "start0 40000-42000/0 40000-45000/1 35000-40000/1 end0");
        mouse("end handle past the start, and on", "40000 8000 5000 15000",
              "start1 8000-10000/1 5000-10000/0 10000-15000/0 end1");
        mouse("empty range", "10000 40000", "start0 40000-40000/0 end0");
        mouse("edge of the handle", "10020 10500", "start0 10500-40000/0 end0");
        mouse("next to the handle", "10030 10500", "press 10030 10500 release");
        mouse("on a handle, not editable", "10000 15000", "press 10000 15000 release", false);
        mouse("on its outer half, not editable", "9990 15000", "", false);
        mouse("keys during a drag", "15000 Right I 16000", "press 15000 16000 release");

        const auto keys = [&](const char *pressed, const char *expected, int playTime = 25000) {
            row(qPrintable(QString("%1 at %2").arg(pressed).arg(playTime)), pressed, expected, true, playTime);
        };
        keys("Right Ctrl+Right", "press 26000 release press 26100 release");
        keys("Left Ctrl+Left", "press 24000 release press 23900 release");
        keys("PgUp PgUp", "press 15000 release press 10000 release");
        keys("PgDown PgDown", "press 35000 release press 40000 release");
        keys("Home End", "press 10000 release press 40000 release");
        keys("I", "start0 25000-40000/0 end0");
        keys("O", "start1 10000-25000/1 end1");
        row("not editable", "I O", "", false, 25000);
        // The other end follows, but not beyond the recording.
        keys("I", "start0 45000-45000/0 end0", 45000);
        keys("O", "start1 5000-5000/1 end1", 5000);
        keys("I", "start0 50000-50000/0 end0", 60000);
        keys("O", "start1 0-0/1 end1", -10);
    }

    void gestures()
    {
        QFETCH(QString, gesture);
        QFETCH(bool, rangeEditable);
        QFETCH(int, playTime);
        makeBar(rangeEditable);
        m_bar->setPlayTime(playTime);
        perform(gesture);
        QTest::mouseClick(m_bar.get(), Qt::RightButton, {}, at(15000));
        QTEST(m_signals.join(' '), "expected");
        QVERIFY(!m_bar->isDragging());
        QVERIFY(gesture.at(0).isLetter() ||
                (m_bar->playTimeMs() >= m_bar->rangeStartMs() && m_bar->playTimeMs() <= m_bar->rangeEndMs()));
    }

    void accessibleInterfaceIsASlider()
    {
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(m_bar.get());
        QCOMPARE(accessible->role(), QAccessible::Slider);
        QCOMPARE(accessible->text(QAccessible::Value), QString("00:25"));
        QAccessibleValueInterface *const value = accessible->valueInterface();
        QCOMPARE(value->minimumValue().toInt(), 10000);
        QCOMPARE(value->maximumValue().toInt(), 40000);
        value->setCurrentValue(45000);
        QCOMPARE(m_signals.join(' '), QString("press 40000 release"));
        QCOMPARE(value->currentValue().toInt(), 40000);
    }

    void reportedTimeWaitsForTheEndOfADrag()
    {
        const QColor played = m_bar->playedColor().lighter(120);
        QTest::mousePress(m_bar.get(), Qt::LeftButton, {}, at(30000));
        QVERIFY(m_bar->isDragging());
        m_bar->setPlayTime(0);
        QCOMPARE(pixel(25000), played);
        QTest::mouseRelease(m_bar.get(), Qt::LeftButton, {}, at(30000));
        QVERIFY(pixel(12500) != played);
        QCOMPARE(m_bar->playTimeMs(), 0);

        // A later move of the mouse overrides the reported time.
        QTest::mousePress(m_bar.get(), Qt::LeftButton, {}, at(30000));
        m_bar->setPlayTime(15000);
        moveTo(35000);
        QTest::mouseRelease(m_bar.get(), Qt::LeftButton, {}, at(35000));
        QCOMPARE(m_bar->playTimeMs(), 35000);
    }

    void rangeFollowsDuration()
    {
        m_bar->setDuration(kDurationMs);
        QCOMPARE(m_bar->rangeStartMs(), 10000);
        m_bar->setPlayRange(30000, 40000);
        QCOMPARE(m_bar->playTimeMs(), 30000);
        m_bar->setDuration(2000);
        QCOMPARE(m_bar->rangeStartMs(), 0);
        QCOMPARE(m_bar->rangeEndMs(), 2000);
        QCOMPARE(m_bar->playTimeMs(), 0);
    }

    void unknownDuration()
    {
        m_bar->setDuration(0);
        m_bar->grab();
        perform("0 500 200 Right");
        QCOMPARE(m_signals.filter(QRegularExpression("[1-9]\\d")), QStringList());
    }

    void looks()
    {
        QVERIFY(m_bar->setProperty("barHeight", 15) && m_bar->setProperty("playedColor", QColor(0, 100, 200)));
        QCOMPARE(m_bar->height(), 23);
        QCOMPARE(m_bar->sizeHint().height(), 15);
        m_bar->setBarHeight(12);
        const QColor range(189, 189, 189);
        QCOMPARE(pixel(5000), QColor(208, 208, 208));
        QCOMPARE(pixel(30000), range);
        QCOMPARE(pixel(20000), QColor(0, 100, 200).lighter(120));
        QCOMPARE(pixel(10000), QColor(0, 100, 200)); // the handle
        QCOMPARE(pixel(25030), range);
        QEvent enter(QEvent::Enter);
        QApplication::sendEvent(m_bar.get(), &enter);
        QCOMPARE(pixel(25020), QColor(0, 100, 200)); // the knob
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(m_bar.get(), &leave);
        QCOMPARE(pixel(25030), range);
    }

    void cursorOverHandles()
    {
        makeBar(false);
        m_bar->show();
        const auto shapeAt = [this](int ms) {
            QTest::mouseMove(m_bar->windowHandle(), at(ms));
            return m_bar->cursor().shape();
        };
        QCOMPARE(shapeAt(40000), Qt::SizeHorCursor);
        QCOMPARE(shapeAt(25000), Qt::ArrowCursor);
        QCOMPARE(shapeAt(10000), Qt::SizeHorCursor);
    }

private:
    void makeBar(bool rangeEditable)
    {
        m_bar = std::make_unique<PlayProgressBar>(rangeEditable);
        m_bar->setBarHeight(12);
        m_bar->resize(kDurationMs / kMsPerPixel + kHeight, kHeight);
        m_bar->setDuration(kDurationMs);
        m_bar->setPlayRange(10000, 40000);
        m_bar->setPlayTime(25000);
        m_signals.clear();
        const auto note = [this](const QString &text) { m_signals += text; };
        using Bar = PlayProgressBar;
        connect(m_bar.get(), &Bar::sigPlayTimePress, this, [=] { note("press"); });
        connect(m_bar.get(), &Bar::sigPlayTimeChanged, this, [=](int ms) { note(QString::number(ms)); });
        connect(m_bar.get(), &Bar::sigPlayTimeRelease, this, [=] { note("release"); });
        connect(m_bar.get(), &Bar::sigRangeAdjustStart, this, [=](int type) { note(QString("start%1").arg(type)); });
        connect(m_bar.get(), &Bar::sigPlayRangeChanged, this,
                [=](int start, int end, int type) { note(QString("%1-%2/%3").arg(start).arg(end).arg(type)); });
        connect(m_bar.get(), &Bar::sigRangeAdjustEnd, this, [=](int type) { note(QString("end%1").arg(type)); });
    }

    /// Keys, and positions in ms: the mouse is pressed at the first, moved to the others and released at the last.
    void perform(const QString &gesture)
    {
        int last = -1;
        bool isPressed = false;
        for (const QString &step : gesture.split(' ')) {
            if (step.at(0).isLetter()) {
                QTest::keySequence(m_bar.get(), QKeySequence(step));
                continue;
            }
            last = step.toInt();
            if (isPressed)
                moveTo(last);
            else
                QTest::mousePress(m_bar.get(), Qt::LeftButton, {}, at(last));
            isPressed = true;
        }
        if (isPressed)
            QTest::mouseRelease(m_bar.get(), Qt::LeftButton, {}, at(last));
    }

    void moveTo(int ms)
    {
        QMouseEvent move(QEvent::MouseMove, at(ms), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(m_bar.get(), &move);
    }

    static QPoint at(int ms) { return {kHeight / 2 + ms / kMsPerPixel, kHeight / 2}; }
    QColor pixel(int ms) { return m_bar->grab().toImage().pixelColor(at(ms)); }

    std::unique_ptr<PlayProgressBar> m_bar;
    QStringList m_signals;
};

QTEST_MAIN(PlayProgressBarTest)
#include "tst_play_progress_bar.moc"
