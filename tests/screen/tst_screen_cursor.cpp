// Snapshots of the pointer, compared with the shapes that the test sets.
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

const QRect kArea(100, 80, 300, 200);
const QPoint kInside(150, 120);

/// A red disc that fades out at its edge, with one pixel of the given color at its center.
QImage disc(QColor center)
{
    QImage image(24, 20, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int distance = (x - 12) * (x - 12) + (y - 10) * (y - 10);
            image.setPixelColor(x, y, QColor(200, 40, 10, qBound(0, 3 * (90 - distance), 255)));
        }
    }
    image.setPixelColor(12, 10, center);
    return image;
}

QCursor cursor(QColor center, int hotX, int hotY)
{
    return QCursor(QPixmap::fromImage(disc(center)), hotX, hotY);
}

} // namespace

class ScreenCursorTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void pixelsAndHotspot();
    void typeIdentifiesContent();
    void hiddenCursor();
    void scaledScreen();
    void lostServer();

private:
    std::shared_ptr<const KelCursorPixmap> show(const QCursor &cursor);

    QRasterWindow m_window;
    std::shared_ptr<const KelCursorPixmap> m_kept;
};

void ScreenCursorTest::initTestCase()
{
    m_window.setFlags(Qt::Window | Qt::X11BypassWindowManagerHint);
    m_window.setGeometry(kArea);
    m_window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&m_window));
    QCursor::setPos(kInside);
}

/// Sets the cursor of the window and takes a snapshot.
std::shared_ptr<const KelCursorPixmap> ScreenCursorTest::show(const QCursor &cursor)
{
    m_window.setCursor(cursor);
    QGuiApplication::sync();
    return m_kept = KelCursorPixmap::GetCursor(kArea);
}

void ScreenCursorTest::pixelsAndHotspot()
{
    const auto snapshot = show(cursor(Qt::blue, 3, 17));
    QVERIFY(snapshot->hasCursor());
    QCOMPARE(snapshot->position(), kInside);
    QCOMPARE(snapshot->hotspot(), QPoint(3, 17));
    QCOMPARE(snapshot->pixmap().devicePixelRatio(), 1.0);
    QCOMPARE(snapshot->pixmap().toImage(), disc(Qt::blue));

    for (const QPoint &elsewhere : {QPoint(0, 0), QPoint(399, 279), QPoint(700, 500)}) {
        QCursor::setPos(elsewhere);
        QGuiApplication::sync();
        QCOMPARE(KelCursorPixmap::GetCursor(kArea)->position(), elsewhere);
    }
    QCursor::setPos(kInside);
}

void ScreenCursorTest::typeIdentifiesContent()
{
    const QString blue = show(cursor(Qt::blue, 3, 17))->type();
    const QString green = show(cursor(Qt::green, 3, 17))->type();
    const QString blueElsewhere = show(cursor(Qt::blue, 4, 17))->type();
    QCOMPARE(show(cursor(Qt::blue, 3, 17))->type(), blue); // a new cursor for the server
    QCOMPARE((QSet<QString>{blue, green, blueElsewhere}.size()), 3);
    QCOMPARE(blue, QString("73622058999e7a5b")); // the same in every run
}

void ScreenCursorTest::hiddenCursor()
{
    QVERIFY(show(cursor(Qt::blue, 3, 17))->hasCursor());
    QVERIFY(!show(Qt::BlankCursor)->hasCursor());
    QVERIFY(show(cursor(Qt::blue, 3, 17))->hasCursor());
}

void ScreenCursorTest::scaledScreen()
{
    show(cursor(Qt::blue, 3, 17));
    X11CursorSource source({QRect(50, 20, 640, 400), 2.0});
    const KelCursorPixmap snapshot = source.read();
    QCOMPARE(snapshot.position(), QPoint(100, 70));
    QCOMPARE(snapshot.hotspot(), QPoint(3, 17));
    QCOMPARE(snapshot.pixmap().devicePixelRatio(), 2.0);
    QCOMPARE(snapshot.type(), m_kept->type());
}

void ScreenCursorTest::lostServer()
{
    XServer server;
    const QByteArray display = qgetenv("DISPLAY");
    qputenv("DISPLAY", server.display());
    X11CursorSource source(ScreenGeometry{});
    qputenv("DISPLAY", "nothing:1234");
    LogCapture log;
    QVERIFY(!X11CursorSource(ScreenGeometry{}).read().hasCursor());
    QCOMPARE(log.take(),
             QStringList{"W [KelCursorPixmap] the pointer cannot be captured: there is no connection to an X server"});
    qputenv("DISPLAY", display);

    const KelCursorPixmap before = source.read();
    QVERIFY(before.hasCursor());
    server.freeze();
    for (int i = 0; i < 3; ++i)
        QCOMPARE(source.read().type(), before.type()); // only the first call waits for the reply
    server.thaw();
    QTRY_VERIFY(source.read().hasCursor());
    QCOMPARE(log.take(), QStringList());

    server.kill();
    for (int i = 0; i < 3; ++i)
        QVERIFY(!source.read().hasCursor());
    QCOMPARE(log.take(),
             QStringList{"W [KelCursorPixmap] the pointer can no longer be captured: the connection to the X "
                         "server is lost"});
}

QTEST_MAIN(ScreenCursorTest)
#include "tst_screen_cursor.moc"
