#include "notification/KelToastsMessage.h"

#include <QApplication>
#include <QScreen>
#include <QtTest>

class ToastsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { KelToastsMessage::avoid(QRect()); }
    void avoidsArea_data();
    void avoidsArea();

private:
    static QRect shown();
};

/// The geometry of the shown toast; empty when there is none.
QRect ToastsTest::shown()
{
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (qobject_cast<const KelToastsMessage *>(window) && window->isVisible())
            return window->geometry();
    }
    return QRect();
}

void ToastsTest::avoidsArea_data()
{
    QTest::addColumn<QRectF>("area"); // as fractions of the screen
    QTest::addColumn<bool>("hasRoom");
    QTest::newRow("none") << QRectF() << true;
    QTest::newRow("upper half") << QRectF(0, 0, 1, 0.5) << true;
    QTest::newRow("lower half") << QRectF(0, 0.5, 1, 0.5) << true;
    QTest::newRow("all but the edges") << QRectF(0.1, 0.01, 0.9, 0.98) << false;
    QTest::newRow("all") << QRectF(0, 0, 1, 1) << false;
}

void ToastsTest::avoidsArea()
{
    QFETCH(QRectF, area);
    QFETCH(bool, hasRoom);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QRect avoided = QRectF(area.x() * screen.width(), area.y() * screen.height(), area.width() * screen.width(),
                                 area.height() * screen.height())
                              .toRect();
    const auto showToast = [] {
        KelToastsMessage::showMessage(nullptr, KelToastsMessage::Warning, "The disk is full.");
    };
    // A shown toast closes; a new one is placed outside of the area, or inside when there is no room.
    showToast();
    KelToastsMessage::avoid(avoided);
    QVERIFY(!shown().intersects(avoided));
    showToast();
    QVERIFY(!shown().isEmpty());
    QVERIFY(screen.contains(shown()));
    QCOMPARE(!shown().intersects(avoided), hasRoom);
}

QTEST_MAIN(ToastsTest)
#include "tst_toasts.moc"
