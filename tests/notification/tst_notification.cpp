#include "notification/KelMsgBox.h"
#include "notification/KelToastsMessage.h"
#include "support/TestTable.h"
#include "support/WhenModal.h"

#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTextDocument>
#include <QtTest>

namespace
{

KelToastsMessage *shownToast()
{
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        auto *const toast = qobject_cast<KelToastsMessage *>(window);
        if (toast && toast->isVisible())
            return toast;
    }
    return nullptr;
}

void send(QWidget *widget, QEvent::Type type)
{
    QEvent event(type);
    QApplication::sendEvent(widget, &event);
}

} // namespace

class NotificationTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        KelToastsMessage::avoid(QGuiApplication::primaryScreen()->geometry());
        KelToastsMessage::avoid(QRect());
    }

    void toastFades_data()
    {
        const TestTable<bool, bool, bool> row("fades", "isPointedAt", "isClicked");
        row("by itself", true, false, false);
        row("when the pointer leaves it", true, true, false);
        row("on a click", false, true, true);
    }

    /// With no duration a toast fades as soon as it may, so one that has faded in completely is held.
    void toastFades()
    {
        QFETCH(bool, fades);
        QFETCH(bool, isPointedAt);
        QFETCH(bool, isClicked);
        QWidget window;
        KelToastsMessage::showMessage(&window, KelToastsMessage::Error, "An earlier message");
        KelToastsMessage::showMessage(&window, KelToastsMessage::Success, "The frame was copied.", 0, fades);
        KelToastsMessage *const toast = shownToast();
        QVERIFY(toast);
        QCOMPARE(toast->text(), QString("The frame was copied."));
        if (isPointedAt) {
            send(toast, QEvent::Enter);
            QTRY_COMPARE_WITH_TIMEOUT(toast->windowOpacity(), 1.0, 30000);
            send(toast, QEvent::Leave);
        }
        if (isClicked) {
            QCoreApplication::processEvents();
            QCOMPARE(toast->windowOpacity(), 1.0);
            QTest::mouseClick(toast, Qt::LeftButton);
        }
        QTRY_VERIFY_WITH_TIMEOUT(!shownToast(), 30000);
    }

    void toastShowsItsType()
    {
        const auto look = [](int type, bool hasCloseButton = false) {
            KelToastsMessage::showMessage(nullptr, type, "text", 0, true, hasCloseButton);
            return shownToast()->grab().toImage();
        };
        QVector<QImage> looks{look(KelToastsMessage::Warning, true)};
        for (const int type : {0, 1, 2, 3}) {
            const QImage image = look(type);
            QVERIFY(!looks.contains(image));
            looks += image;
        }
        QCOMPARE(look(99), looks.at(1));
        QVERIFY(looks.first().width() > looks.last().width());
    }

    void toastStaysOnScreen()
    {
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        for (const QPoint &corner : {screen.topLeft(), screen.topRight(), screen.bottomLeft(), screen.bottomRight()}) {
            QWidget window;
            window.setGeometry(QRect(corner - QPoint(100, 100), QSize(200, 200)));
            KelToastsMessage::showMessage(&window, KelToastsMessage::Error, QString("word ").repeated(100));
            QVERIFY(screen.contains(shownToast()->geometry()));
        }
    }

    void toastAvoidsArea_data()
    {
        const TestTable<QRectF, bool> row("area", "hasRoom"); // as fractions of the screen
        row("upper half", QRectF(0, 0, 1, 0.5), true);
        row("lower half", QRectF(0, 0.5, 1, 0.5), true);
        row("all", QRectF(0, 0, 1, 1), false);
    }

    void toastAvoidsArea()
    {
        QFETCH(QRectF, area);
        QFETCH(bool, hasRoom);
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const QRect avoided(QPoint(0, int(area.y() * screen.height())),
                            QSize(screen.width(), int(area.height() * screen.height())));
        const auto show = [] {
            KelToastsMessage::showMessage(nullptr, KelToastsMessage::Warning, "The disk is full.");
        };
        show();
        const bool isInArea = shownToast()->geometry().intersects(avoided);
        KelToastsMessage::avoid(avoided);
        QCOMPARE(shownToast() == nullptr, isInArea);
        show();
        QVERIFY(screen.contains(shownToast()->geometry()));
        QCOMPARE(!shownToast()->geometry().intersects(avoided), hasRoom);
    }

    void boxesShowPlainText_data()
    {
        const TestTable<QMessageBox::Icon, QString> row("icon", "detail");
        row("warning", QMessageBox::Warning, "cannot open <i>a&b</i>\nno space left");
        row("critical", QMessageBox::Critical, "");
        row("question", QMessageBox::Question, "");
    }

    void boxesShowPlainText()
    {
        QFETCH(QMessageBox::Icon, icon);
        QFETCH(QString, detail);
        const QString title = "Save Frame";
        const QString text = "<b>a & b</b>.png";
        QStringList shown;
        whenModal<QMessageBox>([&](QMessageBox *box) {
            QTextDocument detailShown;
            detailShown.setHtml(box->informativeText());
            shown = QStringList{box->windowTitle(), box->text(), detailShown.toPlainText()};
            shown += box->findChild<QLabel *>("qt_msgbox_label")->textFormat() == Qt::PlainText ? "plain" : "rich";
            shown += QString::number(box->icon());
            box->defaultButton()->click();
        });
        if (icon == QMessageBox::Warning)
            KelMsgBox::warning(nullptr, title, text, detail);
        else if (icon == QMessageBox::Critical)
            KelMsgBox::critical(nullptr, title, text, detail);
        else
            KelMsgBox::question(nullptr, title, text);
        QCOMPARE(shown, (QStringList{title, text, detail, "plain", QString::number(icon)}));
    }

    void questionHasADefault_data()
    {
        const TestTable<Qt::Key, int> row("key", "answer");
        row("Enter", Qt::Key_Return, QMessageBox::Yes);
        row("Escape", Qt::Key_Escape, QMessageBox::No);
    }

    void questionHasADefault()
    {
        QFETCH(Qt::Key, key);
        whenModal<QMessageBox>([=](QMessageBox *box) { QTest::keyClick(box, key); });
        QTEST(int(KelMsgBox::question(nullptr, "Delete", "Delete permanently?")), "answer");
    }
};

QTEST_MAIN(NotificationTest)
#include "tst_notification.moc"
