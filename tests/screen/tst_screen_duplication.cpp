#include "ScriptedDesktop.h"
#include "support/TestTable.h"

#include <QBitmap>
#include <QTransform>
#include <QtTest>

using namespace kel;

namespace
{

constexpr QSize screenSize(60, 40);

int degreesOf(DXGI_MODE_ROTATION rotation)
{
    return 90 * (rotation - DXGI_MODE_ROTATION_IDENTITY);
}

/// A surface every pixel of which is another, and other than with any other seed.
QImage surfaceOf(const QSize &size, int seed)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x, y, seed));
    }
    return image;
}

ScriptedFrame presented(const QImage &surface, const std::vector<RECT> &drawn = {{0, 0, 1, 1}})
{
    ScriptedFrame frame;
    frame.surface = surface;
    frame.drawn = drawn;
    return frame;
}

ScriptedFrame failing(HRESULT result)
{
    ScriptedFrame frame;
    frame.result = result;
    return frame;
}

} // namespace

/// Reading by duplication, with a graphics system that follows a script.
class ScreenDuplicationTest : public QObject
{
    Q_OBJECT

private slots:
    void turnsAndPlaces_data();
    void turnsAndPlaces();
    void joinsScreens();
    void outlastsLosses_data();
    void outlastsLosses();
    void seesScreensComeAndGo();
};

void ScreenDuplicationTest::turnsAndPlaces_data()
{
    QTest::addColumn<int>("rotation");
    QTest::addColumn<QRect>("rect");
    for (int rotation = DXGI_MODE_ROTATION_IDENTITY; rotation <= DXGI_MODE_ROTATION_ROTATE270; ++rotation) {
        QTest::addRow("%d, inside", degreesOf(DXGI_MODE_ROTATION(rotation))) << rotation << QRect(-90, 15, 20, 10);
        QTest::addRow("%d, beyond", degreesOf(DXGI_MODE_ROTATION(rotation))) << rotation << QRect(-110, 0, 200, 90);
    }
}

/// Only what Windows says was drawn or moved is copied, from where the surface has it to where the screen shows it.
void ScreenDuplicationTest::turnsAndPlaces()
{
    QFETCH(int, rotation);
    QFETCH(QRect, rect);
    const int degrees = degreesOf(DXGI_MODE_ROTATION(rotation));
    const QTransform turn = QTransform().rotate(degrees);
    const QSize surface = degrees % 180 == 0 ? screenSize : screenSize.transposed();
    const QRect place(QPoint(-100, 10), screenSize);
    ScriptedDesktop desktop;
    desktop.screens.push_back({place, DXGI_MODE_ROTATION(rotation), {}});
    std::deque<ScriptedFrame> &frames = desktop.screens[0].frames;

    const QImage before = surfaceOf(surface, 1), after = surfaceOf(surface, 2);
    frames.push_back(presented(before));
    ScriptedFrame change = presented(after, {{11, 8, 18, 20}});
    change.moved.push_back({{0, 0}, {20, 15, 24, 19}});
    frames.push_back(change);
    ScriptedFrame pointer;
    pointer.isPresented = false;
    frames.push_back(pointer);
    ScriptedFrame untold = presented(before);
    untold.isDescribed = false;
    frames.push_back(untold);

    // What the rectangle shows of a surface.
    const auto view = [&](const QImage &on) {
        QImage picture(rect.size(), QImage::Format_RGB32);
        picture.fill(Qt::black);
        const QImage screen = on.transformed(turn);
        for (int y = 0; y < rect.height(); ++y) {
            for (int x = 0; x < rect.width(); ++x) {
                if (place.contains(rect.topLeft() + QPoint(x, y)))
                    picture.setPixel(x, y, screen.pixel(rect.topLeft() + QPoint(x, y) - place.topLeft()));
            }
        }
        return picture;
    };
    DuplicationDesktopReader reader(rect, desktop.system());
    DesktopReader::Update news = reader.update();
    QCOMPARE(int(news.state), int(DesktopReader::State::Ready));
    QCOMPARE(news.changed, QRegion(QRect(QPoint(), rect.size())));
    QCOMPARE(reader.picture(), view(before));

    news = reader.update();
    QImage drawn(surface, QImage::Format_RGB32);
    drawn.fill(Qt::black);
    QImage mixed = before;
    for (const QRect &one : {QRect(11, 8, 7, 12), QRect(20, 15, 4, 4)}) {
        for (int y = one.top(); y <= one.bottom(); ++y) {
            for (int x = one.left(); x <= one.right(); ++x) {
                mixed.setPixel(x, y, after.pixel(x, y));
                drawn.setPixel(x, y, qRgb(255, 255, 255));
            }
        }
    }
    QCOMPARE(reader.picture(), view(mixed));
    const QImage mask = view(drawn).createMaskFromColor(qRgb(255, 255, 255), Qt::MaskOutColor);
    QVERIFY(news.changed.xored(QRegion(QBitmap::fromImage(mask))).isEmpty());

    QVERIFY(reader.update().changed.isEmpty()); // the pointer alone
    QCOMPARE(reader.update().changed.boundingRect(), rect.intersected(place).translated(-rect.topLeft()));
    QCOMPARE(reader.picture(), view(before));
    QVERIFY(reader.update().changed.isEmpty()); // no frame at all
}

void ScreenDuplicationTest::joinsScreens()
{
    ScriptedDesktop desktop;
    const QImage left = surfaceOf(screenSize, 1), right = surfaceOf(screenSize.transposed(), 2);
    desktop.screens.push_back({QRect(QPoint(0, 0), screenSize), DXGI_MODE_ROTATION_IDENTITY, {presented(left)}});
    desktop.screens.push_back({QRect(QPoint(60, 0), screenSize), DXGI_MODE_ROTATION_ROTATE90, {}});
    DuplicationDesktopReader reader({50, 10, 20, 20}, desktop.system());
    QCOMPARE(int(reader.update().state), int(DesktopReader::State::NotNow)); // one has nothing to show yet
    desktop.screens[1].frames.push_back(presented(right));
    QCOMPARE(int(reader.update().state), int(DesktopReader::State::Ready));
    QCOMPARE(reader.picture().copy(0, 0, 10, 20), left.copy(50, 10, 10, 20));
    QCOMPARE(reader.picture().copy(10, 0, 10, 20), right.transformed(QTransform().rotate(90)).copy(0, 10, 10, 20));
}

void ScreenDuplicationTest::outlastsLosses_data()
{
    // The next frame's result, and that of asking for access from then on, for so many updates.
    const TestTable<bool, HRESULT, HRESULT, int, bool> row("hasPicture", "loss", "refusal", "updates", "isForGood");
    const HRESULT lost = DXGI_ERROR_ACCESS_LOST, denied = E_ACCESSDENIED, unsupported = DXGI_ERROR_UNSUPPORTED;
    row("a question of rights", true, lost, denied, 5, false);
    row("locked for long", true, lost, denied, 1000, false);
    row("another mode", true, lost, DXGI_ERROR_MODE_CHANGE_IN_PROGRESS, 20, false);
    row("a driver that starts anew", true, DXGI_ERROR_DEVICE_REMOVED, DXGI_ERROR_DEVICE_RESET, 20, false);
    row("a remote desktop that is left", true, lost, DXGI_ERROR_SESSION_DISCONNECTED, 1000, false);
    row("locked from the start", false, lost, denied, 20, false);
    row("never granted", false, lost, denied, 60, true);
    row("nobody can", false, unsupported, unsupported, 1, true);
    row("no longer possible", true, lost, unsupported, 60, true);
}

/// The last picture stays while the desktop is somebody else's, and all of it counts as changed afterwards.
void ScreenDuplicationTest::outlastsLosses()
{
    QFETCH(bool, hasPicture);
    QFETCH(HRESULT, loss);
    QFETCH(HRESULT, refusal);
    QFETCH(int, updates);
    QFETCH(bool, isForGood);
    ScriptedDesktop desktop;
    desktop.screens.push_back({QRect(QPoint(), screenSize), DXGI_MODE_ROTATION_IDENTITY, {}});
    ScriptedScreen &screen = desktop.screens[0];
    const QImage before = surfaceOf(screenSize, 1), after = surfaceOf(screenSize, 2);
    DuplicationDesktopReader reader(screen.place, desktop.system());
    if (hasPicture) {
        screen.frames.push_back(presented(before));
        QCOMPARE(int(reader.update().state), int(DesktopReader::State::Ready));
    }
    screen.frames.push_back(failing(loss));
    screen.access = hasPicture ? S_OK : refusal;
    bool isUnusable = false;
    for (int i = 0; i < updates && !isUnusable; ++i) {
        const DesktopReader::State state = reader.update().state;
        QVERIFY(state != DesktopReader::State::Ready);
        isUnusable = state == DesktopReader::State::Unusable;
        screen.access = refusal;
        if (hasPicture)
            QCOMPARE(reader.picture(), before);
    }
    QCOMPARE(isUnusable, isForGood);
    if (isForGood)
        return;
    QVERIFY(screen.questions <= updates / 5 + 20); // to ask makes work
    screen.access = S_OK;
    screen.frames = {presented(after)};
    DesktopReader::Update news;
    for (int i = 0; i < 20 && news.state != DesktopReader::State::Ready; ++i)
        news = reader.update();
    QCOMPARE(news.changed, QRegion(screen.place));
    QCOMPARE(reader.picture(), after);
}

void ScreenDuplicationTest::seesScreensComeAndGo()
{
    ScriptedDesktop desktop;
    const QImage first = surfaceOf(screenSize, 1), second = surfaceOf(screenSize, 2);
    desktop.screens.push_back({QRect(QPoint(0, 0), screenSize), DXGI_MODE_ROTATION_IDENTITY, {presented(first)}});
    DuplicationDesktopReader reader({0, 0, 120, 40}, desktop.system());
    QCOMPARE(int(reader.update().state), int(DesktopReader::State::Ready));
    QCOMPARE(reader.picture().copy(60, 0, 60, 40).pixel(5, 5), qRgb(0, 0, 0));

    // Another one comes.
    desktop.isCurrent = false;
    desktop.screens[0].frames.push_back(presented(first));
    desktop.screens.push_back({QRect(QPoint(60, 0), screenSize), DXGI_MODE_ROTATION_IDENTITY, {presented(second)}});
    QCOMPARE(reader.update().changed, QRegion(0, 0, 120, 40));
    QCOMPARE(reader.picture().copy(60, 0, 60, 40), second);

    // Both go: the last picture stays, however long that takes, until one is back.
    desktop.isCurrent = false;
    const std::deque<ScriptedScreen> kept = desktop.screens;
    desktop.screens.clear();
    for (int i = 0; i < 1000; ++i)
        QCOMPARE(int(reader.update().state), int(DesktopReader::State::NotNow));
    QCOMPARE(reader.picture().copy(60, 0, 60, 40), second);
    desktop.screens.push_back(kept[1]);
    desktop.screens[0].frames.push_back(presented(first));
    DesktopReader::Update news;
    for (int i = 0; i < 20 && news.state != DesktopReader::State::Ready; ++i)
        news = reader.update();
    QCOMPARE(reader.picture().copy(60, 0, 60, 40), first);
    QCOMPARE(reader.picture().pixel(5, 5), qRgb(0, 0, 0));
}

QTEST_MAIN(ScreenDuplicationTest)
#include "tst_screen_duplication.moc"
