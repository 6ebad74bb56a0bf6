// The screen cast of the desktop portal, on a private session of Mutter with two monitors.
#include "screen/KelCursorPixmap.h"
#include "screen/KelScreenManager.h"
#include "support/wayland/MutterSession.h"

#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>
#include <QtTest>

#include <csignal>
#include <memory>

namespace
{

using Answer = KelScreenPermission::Answer;

/// Four colors and a line of single pixels: a shift by one pixel or swapped colors show.
QImage scene(const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    const QRect half(0, 0, size.width() / 2, size.height() / 2);
    painter.fillRect(image.rect(), QColor(200, 40, 10));
    painter.fillRect(half, QColor(10, 120, 240));
    painter.fillRect(half.translated(half.width(), half.height()), QColor(250, 250, 120));
    painter.setPen(QColor(0, 90, 0));
    painter.drawLine(QPoint(3, 5), QPoint(size.width() - 4, size.height() - 6));
    return image;
}

/// Fills a screen with the scene, and a square of it with any color.
class SceneWindow : public QRasterWindow
{
public:
    explicit SceneWindow(QScreen *screen)
    {
        setScreen(screen);
        setGeometry(screen->geometry());
        setCursor(Qt::CrossCursor);
        showFullScreen();
    }

    static constexpr QRect kSquare{600, 300, 64, 64};

    QImage picture() const
    {
        QImage image = scene(size());
        QPainter(&image).fillRect(kSquare, m_color);
        return image;
    }
    void setColor(const QColor &color)
    {
        m_color = color;
        update(kSquare);
    }

protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).drawImage(0, 0, picture()); }

private:
    QColor m_color = Qt::black;
};

/// Asks for permission, and waits for the answer.
struct Permission {
    explicit Permission(const QRect &area)
    {
        preparation = KelScreenManager::instance()->prepare(area, true, [this](const KelScreenPermission &given) {
            permission = given;
            ++answers;
        });
    }
    bool wait() const
    {
        return QTest::qWaitFor([this] { return answers > 0; }, 30000);
    }

    std::unique_ptr<KelScreenPreparation> preparation;
    KelScreenPermission permission;
    int answers = 0;
};

std::unique_ptr<KelScreenStreamer> streamerFor(const QRect &area)
{
    return std::unique_ptr<KelScreenStreamer>(KelScreenManager::instance()->createScreenStreamer(area));
}

} // namespace

class ScreenPortalTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QFile::remove(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                      "/KelMovie/screen-cast.json");
        QCOMPARE(KelScreenManager::instance()->errorString(), QString());
        QCOMPARE(QGuiApplication::screens().size(), 2);
        m_window = std::make_unique<SceneWindow>(QGuiApplication::primaryScreen());
        m_screen = m_window->screen()->geometry();
        m_mutter = std::make_unique<MutterSession>();
        m_mutter->movePointer({200, 200});
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }
    void cleanupTestCase() { m_window.reset(); }

    void capturesThePixels()
    {
        const Permission permission(m_screen);
        QVERIFY(permission.wait());
        QCOMPARE(permission.permission.reason, QString());

        const QRect areas[] = {m_screen, {m_screen.topLeft() + QPoint(501, 203), QSize(300, 240)}};
        for (const QRect &area : areas) {
            const auto streamer = streamerFor(area);
            QImage frame;
            const auto shows = [&](const QImage &expected) {
                if (streamer->hasFrameChanged() && !streamer->captureTo(frame))
                    return false;
                return frame == expected.copy(area.translated(-m_screen.topLeft()));
            };
            m_window->setColor(Qt::black);
            QTRY_VERIFY2(shows(m_window->picture()), qPrintable(streamer->errorString()));
            m_window->setColor(Qt::white);
            QTRY_VERIFY(shows(m_window->picture()));
            QVERIFY(!streamer->hasFrameChanged());
        }
    }

    void asksOnce()
    {
        const int questions = MutterSession::questions();
        for (int i = 0; i < 2; ++i) {
            const Permission permission(m_screen);
            QVERIFY(permission.wait());
            QCOMPARE(permission.permission.reason, QString());
        }
        QCOMPARE(MutterSession::questions(), questions); // the test before has answered it
    }

    void tellsWhyNot_data()
    {
        QTest::addColumn<QString>("choice");
        QTest::addColumn<bool>("isDeclined");
        QTest::addColumn<QString>("reason");
        QTest::newRow("declined") << "decline" << true << "was declined";
        QTest::newRow("broken") << "fail" << false << "Start: the portal of this desktop has failed";
        QTest::newRow("another monitor") << "Meta-0" << false << "on a screen that was not chosen";
    }

    void tellsWhyNot()
    {
        QFETCH(QString, choice);
        MutterSession::setAnswer({choice});
        const Permission permission(QGuiApplication::screens().last()->geometry());
        QVERIFY(permission.wait());
        QCOMPARE(permission.answers, 1);
        QTEST(permission.permission.answer == Answer::Declined, "isDeclined");
        QFETCH(QString, reason);
        QVERIFY2(permission.permission.reason.contains(reason), qPrintable(permission.permission.reason));
    }

    void withdrawsTheQuestion()
    {
        const int questions = MutterSession::questions();
        MutterSession::setAnswer({"wait"});
        Permission permission(QGuiApplication::screens().last()->geometry());
        QTRY_COMPARE(MutterSession::questions(), questions + 1);
        permission.preparation.reset();
        QTRY_COMPARE(MutterSession::sessions(), 0);
        QCOMPARE(permission.answers, 0);
        MutterSession::setAnswer({"Meta-0"});
    }

    void recordsAcrossMonitors()
    {
        MutterSession::setAnswer({"Meta-0", "Meta-1"});
        const QRect area(m_screen.right() - 99, 100, 200, 100);
        const Permission permission(area);
        QVERIFY(permission.wait());
        QCOMPARE(permission.permission.reason, QString());
        const auto streamer = streamerFor(area);
        QImage frame;
        QVERIFY(streamer->captureTo(frame));
        QCOMPARE(frame.size(), area.size());
        const QRect left(0, 0, 100, 100);
        QTRY_VERIFY(streamer->captureTo(frame) &&
                    frame.copy(left) == m_window->picture().copy(m_screen.right() - 99, 100, 100, 100));
        QVERIFY(frame.pixelColor(150, 50) != frame.pixelColor(50, 50)); // Mutter's background
        MutterSession::setAnswer({"Meta-0"});
    }

    void tellsThePointer()
    {
        const Permission permission(m_screen);
        QVERIFY(permission.wait());
        QVERIFY(!KelScreenManager::instance()->isPointerInFrames());
        // Moves the pointer and clicks, because this version of Qt does not set the first shape before.
        int x = 400;
        std::shared_ptr<const KelCursorPixmap> pointer;
        const auto use = [&](Qt::CursorShape shape) {
            m_window->setCursor(shape);
            m_mutter->movePointer({++x, 321});
            m_mutter->click();
            const auto hasArrived = [&] {
                pointer = KelCursorPixmap::GetCursor(m_screen);
                return pointer->position() == m_screen.topLeft() + QPoint(x, 321);
            };
            return QTest::qWaitFor(hasArrived, 1000) && pointer->hasCursor();
        };
        QTRY_VERIFY(use(Qt::CrossCursor) && pointer->hotspot() != QPoint());
        QVERIFY(pointer->pixmap().rect().contains(pointer->hotspot()));
        const QString cross = pointer->type();
        QTRY_VERIFY(use(Qt::IBeamCursor) && pointer->type() != cross);
        QTRY_VERIFY(use(Qt::CrossCursor) && pointer->type() == cross);
        QTRY_VERIFY(!use(Qt::BlankCursor));
    }

    void endsWhenThePersonStopsIt()
    {
        const Permission permission(m_screen);
        QVERIFY(permission.wait());
        const auto streamer = streamerFor(m_screen);
        MutterSession::closeCasts();
        QTRY_COMPARE(streamer->errorString(), QString("The desktop has ended the screen cast."));
    }

    void goesOnWithoutThePortal()
    {
        const Permission permission(m_screen);
        QVERIFY(permission.wait());
        const auto streamer = streamerFor(m_screen);
        QImage frame;
        QVERIFY(streamer->captureTo(frame));
        kill(qEnvironmentVariableIntValue("PORTAL_PID"), SIGKILL);
        m_window->setColor(Qt::green);
        QTRY_VERIFY(streamer->captureTo(frame) && frame == m_window->picture());
        QCOMPARE(streamer->errorString(), QString());

        kill(qEnvironmentVariableIntValue("PIPEWIRE_PID"), SIGKILL);
        QTRY_VERIFY(streamer->errorString().contains("PipeWire"));
        QVERIFY(!streamer->hasFrameChanged());
        QVERIFY(!streamer->captureTo(frame));
    }

private:
    std::unique_ptr<MutterSession> m_mutter;
    std::unique_ptr<SceneWindow> m_window;
    QRect m_screen;
};

QTEST_MAIN(ScreenPortalTest)
#include "tst_screen_portal.moc"
