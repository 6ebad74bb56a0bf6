#include "notification/KelToastsMessage.h"

#include <QApplication>
#include <QScreen>
#include <QtTest>

class ToastsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { KelToastsMessage::keepOut(QRect()); }
    void keepsOutOfTheArea_data();
    void keepsOutOfTheArea();

private:
    static QRect shown();
};

/// Where there is a toast; empty when there is none.
QRect ToastsTest::shown()
{
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (qobject_cast<const KelToastsMessage *>(window) && window->isVisible())
            return window->geometry();
    }
    return QRect();
}

void ToastsTest::keepsOutOfTheArea_data()
{
    QTest::addColumn<QRectF>("area"); // shares of the screen
    QTest::addColumn<bool>("isShown");
    QTest::newRow("none") << QRectF() << true;
    QTest::newRow("upper half") << QRectF(0, 0, 1, 0.5) << true;
    QTest::newRow("lower half") << QRectF(0, 0.5, 1, 0.5) << true;
    QTest::newRow("all but the middle's edge") << QRectF(0.1, 0.01, 0.9, 0.98) << false;
    QTest::newRow("all") << QRectF(0, 0, 1, 1) << false;
}

void ToastsTest::keepsOutOfTheArea()
{
    QFETCH(QRectF, area);
    QFETCH(bool, isShown);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QRect kept = QRectF(area.x() * screen.width(), area.y() * screen.height(), area.width() * screen.width(),
                              area.height() * screen.height())
                           .toRect();
    // Both a toast that comes and one that is there already.
    KelToastsMessage::keepOut(kept);
    QCOMPARE(KelToastsMessage::showMessage(nullptr, KelToastsMessage::Warning, "The disk is almost full."), isShown);
    QCOMPARE(!shown().isEmpty(), isShown);
    QVERIFY(!shown().intersects(kept));
    KelToastsMessage::keepOut(QRect());
    QVERIFY(KelToastsMessage::showMessage(nullptr, KelToastsMessage::Warning, "The disk is almost full."));
    QVERIFY(screen.contains(shown()));
    KelToastsMessage::keepOut(kept);
    QVERIFY(!shown().intersects(kept));
}

QTEST_MAIN(ToastsTest)
#include "tst_toasts.moc"
