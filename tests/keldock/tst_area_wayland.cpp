#include "area/AreaOverlay.h"
#include "area/AreaPicker.h"
#include "recorder/AreaFrame.h"
#include "support/PaintedWindow.h"

#include <KelMovie/KelMovieUI.h>

#include <QApplication>
#include <QtTest>

/// Choosing an area on a Wayland desktop, on pictures of its screens.
class AreaWaylandTest : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "wayland"); }

private slots:
    void fillsEachScreenWithItsPicture()
    {
        const QRect shown(100, 80, 200, 150);
        const PaintedWindow window(shown, 0xffff0000);
        QTRY_COMPARE(KelMovieUI::screenshot(shown).pixelColor(10, 10), QColor(Qt::red));
        AreaPicker picker;
        picker.open(shown, {});
        int overlays = 0;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            auto *const overlay = qobject_cast<AreaOverlay *>(widget);
            if (!overlay)
                continue;
            ++overlays;
            QTRY_COMPARE(overlay->size(), QSize(1280, 720));
            QVERIFY(overlay->isFullScreen());
            if (overlay->screen() == QGuiApplication::screenAt(shown.center()))
                QCOMPARE(overlay->grab().toImage().pixelColor(shown.center()), QColor(Qt::red));
        }
        QCOMPARE(overlays, 2);
        picker.cancel();
        AreaFrame frame;
        frame.showAround(shown);
        QVERIFY(!frame.isVisible()); // it would be anywhere, even in the picture
    }
};

QTEST_MAIN(AreaWaylandTest)
#include "tst_area_wayland.moc"
