// Snapshots of the pointer, against shapes that the test makes.
#include "screen/KelCursorPixmap.h"
#include "screen/x11/X11CursorSource.h"
#include "support/LogCapture.h"
#include "support/x11/XServer.h"

#include <QCursor>
#include <QImage>
#include <QRasterWindow>
#include <QtTest>

using namespace kel;

namespace
{

const QRect Area(100, 80, 300, 200);
const QPoint Inside(150, 120);

/// A red disc whose edge fades out, with one more pixel of the given colour in its middle.
QImage disc(QColor middle)
{
    QImage image(24, 20, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int distance = (x - 12) * (x - 12) + (y - 10) * (y - 10);
            image.setPixelColor(x, y, QColor(200, 40, 10, qBound(0, 3 * (90 - distance), 255)));
        }
    }
    image.setPixelColor(12, 10, middle);
    return image;
}

QCursor cursor(QColor middle, int hotX, int hotY)
{
    return QCursor(QPixmap::fromImage(disc(middle)), hotX, hotY);
}

} // namespace

class tst_screen_cursor : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void pixelsAndHotspot();
    void typesFollowTheContent();
    void hiddenCursor();
    void scaledScreen();
    void lostServer();

private:
    std::shared_ptr<const KelCursorPixmap> show(const QCursor &cursor);

    QRasterWindow m_window;
    std::shared_ptr<const KelCursorPixmap> m_kept;
};

void tst_screen_cursor::initTestCase()
{
    m_window.setFlags(Qt::Window | Qt::X11BypassWindowManagerHint);
    m_window.setGeometry(Area);
    m_window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&m_window));
    QCursor::setPos(Inside);
}

/// Lets the window have that cursor and takes a snapshot once the server has another shape than before.
std::shared_ptr<const KelCursorPixmap> tst_screen_cursor::show(const QCursor &cursor)
{
    m_window.setCursor(cursor);
    QGuiApplication::sync();
    return m_kept = KelCursorPixmap::GetCursor(Area);
}

void tst_screen_cursor::pixelsAndHotspot()
{
    const auto snapshot = show(cursor(Qt::blue, 3, 17));
    QVERIFY(snapshot->hasCursor());
    QCOMPARE(snapshot->position(), Inside);
    QCOMPARE(snapshot->hotspot(), QPoint(3, 17));
    QCOMPARE(snapshot->pixmap().devicePixelRatio(), 1.0);
    QCOMPARE(snapshot->pixmap().toImage(), disc(Qt::blue));

    for (const QPoint &elsewhere : {QPoint(0, 0), QPoint(399, 279), QPoint(700, 500)}) {
        QCursor::setPos(elsewhere);
        QGuiApplication::sync();
        QCOMPARE(KelCursorPixmap::GetCursor(Area)->position(), elsewhere);
    }
    QCursor::setPos(Inside);
}

void tst_screen_cursor::typesFollowTheContent()
{
    const QString blue = show(cursor(Qt::blue, 3, 17))->type();
    const QString green = show(cursor(Qt::green, 3, 17))->type();
    const QString blueElsewhere = show(cursor(Qt::blue, 4, 17))->type();
    QCOMPARE(show(cursor(Qt::blue, 3, 17))->type(), blue); // to the server it is a new cursor
    QCOMPARE((QSet<QString>{blue, green, blueElsewhere}.size()), 3);
    QCOMPARE(blue, QString("73622058999e7a5b")); // in every run
}

void tst_screen_cursor::hiddenCursor()
{
    QVERIFY(show(cursor(Qt::blue, 3, 17))->hasCursor());
    QVERIFY(!show(Qt::BlankCursor)->hasCursor());
    QVERIFY(show(cursor(Qt::blue, 3, 17))->hasCursor());
}

void tst_screen_cursor::scaledScreen()
{
    show(cursor(Qt::blue, 3, 17));
    X11CursorSource source({QPoint(50, 20), 2.0});
    const KelCursorPixmap snapshot = source.read();
    QCOMPARE(snapshot.position(), QPoint(100, 70));
    QCOMPARE(snapshot.hotspot(), QPoint(3, 17));
    QCOMPARE(snapshot.pixmap().devicePixelRatio(), 2.0);
    QCOMPARE(snapshot.type(), m_kept->type());
}

void tst_screen_cursor::lostServer()
{
    XServer server;
    const QByteArray display = qgetenv("DISPLAY");
    qputenv("DISPLAY", server.display());
    X11CursorSource source(ScreenScale{});
    qputenv("DISPLAY", "nothing:1234");
    LogCapture log;
    QVERIFY(!X11CursorSource(ScreenScale{}).read().hasCursor());
    QCOMPARE(log.take(),
             QStringList{"W [KelCursorPixmap] the pointer cannot be seen: there is no connection to an X server"});
    qputenv("DISPLAY", display);

    const KelCursorPixmap before = source.read();
    QVERIFY(before.hasCursor());
    server.freeze();
    for (int i = 0; i < 3; ++i)
        QCOMPARE(source.read().type(), before.type()); // only the first question waits for the answer
    server.thaw();
    QTRY_VERIFY(source.read().hasCursor());
    QCOMPARE(log.take(), QStringList());

    server.kill();
    for (int i = 0; i < 3; ++i)
        QVERIFY(!source.read().hasCursor());
    QCOMPARE(log.take(), QStringList{"W [KelCursorPixmap] the pointer cannot be seen any more: the connection to the X "
                                     "server is lost"});
}

QTEST_MAIN(tst_screen_cursor)
#include "tst_screen_cursor.moc"
