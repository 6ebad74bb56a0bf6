#include "notification/KelToastsMessage.h"

#include <QApplication>
#include <QScreen>
#include <QtTest>

class ToastsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { KelToastsMessage::avoid(QRect()); }
    void avoidsTheArea_data();
    void avoidsTheArea();

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

void ToastsTest::avoidsTheArea_data()
{
    QTest::addColumn<QRectF>("area"); // shares of the screen
    QTest::addColumn<bool>("hasRoom");
    QTest::newRow("none") << QRectF() << true;
    QTest::newRow("upper half") << QRectF(0, 0, 1, 0.5) << true;
    QTest::newRow("lower half") << QRectF(0, 0.5, 1, 0.5) << true;
    QTest::newRow("all but the middle's edge") << QRectF(0.1, 0.01, 0.9, 0.98) << false;
    QTest::newRow("all") << QRectF(0, 0, 1, 1) << false;
}

void ToastsTest::avoidsTheArea()
{
    QFETCH(QRectF, area);
    QFETCH(bool, hasRoom);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QRect avoided = QRectF(area.x() * screen.width(), area.y() * screen.height(), area.width() * screen.width(),
                                 area.height() * screen.height())
                              .toRect();
    const auto tell = [] { KelToastsMessage::showMessage(nullptr, KelToastsMessage::Warning, "The disk is full."); };
    // One that is there already goes; one that comes stands beside, or is seen at any rate.
    tell();
    KelToastsMessage::avoid(avoided);
    QVERIFY(!shown().intersects(avoided));
    tell();
    QVERIFY(!shown().isEmpty());
    QVERIFY(screen.contains(shown()));
    QCOMPARE(!shown().intersects(avoided), hasRoom);
}

QTEST_MAIN(ToastsTest)
#include "tst_toasts.moc"
