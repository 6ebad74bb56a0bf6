#include "support/TestTable.h"
#include "widget/FloatPanel.h"
#include "widget/LabelWidthFloatPanel.h"

#include <QAccessible>
#include <QApplication>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <QtTest>

class FloatPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_window = std::make_unique<QWidget>();
        m_label = new LabelWidthFloatPanel(m_window.get());
        m_label->setText("24FPS");
        m_panel = new FloatPanel;
        m_content = new QPushButton("choice", m_panel);
        m_content->setFixedSize(120, 90);
        (new QVBoxLayout(m_panel))->addWidget(m_content);
        m_label->setPanel(m_panel);
        m_label->adjustSize();
        m_window->resize(300, 60);
        m_window->move(200, 200);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    void cleanup() { m_window.reset(); }

    void opensAndCloses_data()
    {
        const TestTable<QString, QString> row("open", "close");
        row("mouse and key", "click", "Esc");
        row("mouse", "click", "click again");
        row("key and mouse", "Space", "click outside");
        row("key and program", "Return", "hide");
        row("assistive program", "menu action", "menu action");
        row("disabled while open", "Down", "disable");
    }

    void opensAndCloses()
    {
        QFETCH(QString, open);
        QFETCH(QString, close);
        QSignalSpy visible(m_panel, &FloatPanel::sigVisibleChanged);
        act(open);
        QVERIFY(m_panel->isVisible());
        QCOMPARE(m_panel->focusWidget(), m_content);
        act(close);
        QVERIFY(!m_panel->isVisible());
        QCOMPARE(visible, (QList<QVariantList>{{true}, {false}}));
        QCOMPARE(m_window->focusWidget(), m_label);
    }

    void disabledPanelStaysClosed()
    {
        m_panel->setDisplayEnable(false);
        QTest::mouseClick(m_label, Qt::LeftButton);
        QTest::keyClick(m_label, Qt::Key_Space);
        QVERIFY(!m_panel->isVisible());
        m_panel->setDisplayEnable(true);
        QTest::mouseClick(m_label, Qt::RightButton);
        QVERIFY(!m_panel->isVisible());
        QTest::mouseClick(m_label, Qt::LeftButton);
        QVERIFY(m_panel->isVisible());
    }

    void staysOnScreen_data()
    {
        const TestTable<Qt::Alignment> row("corner");
        row("top left", Qt::AlignTop | Qt::AlignLeft);
        row("bottom right", Qt::AlignBottom | Qt::AlignRight);
    }

    void staysOnScreen()
    {
        QFETCH(Qt::Alignment, corner);
        const QRect screen = m_window->screen()->availableGeometry();
        m_window->resize(m_label->size());
        m_window->move(corner & Qt::AlignLeft ? screen.left() : screen.right() + 1 - m_window->width(),
                       corner & Qt::AlignTop ? screen.top() : screen.bottom() + 1 - m_window->height());
        m_label->togglePanel();
        QVERIFY(screen.contains(m_panel->geometry()));
        const QRect label(m_label->mapToGlobal(QPoint()), m_label->size());
        QVERIFY(!label.intersects(m_panel->geometry()));
        QCOMPARE(m_panel->size(), m_panel->sizeHint());
    }

    void newPanelReplacesOldOne()
    {
        const QPointer<FloatPanel> old = m_panel;
        auto *const panel = new FloatPanel;
        m_label->setPanel(panel);
        QVERIFY(!old);
        QCOMPARE(panel->parentWidget(), m_label);
        QVERIFY(panel->isWindow());
    }

private:
    void act(const QString &action)
    {
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(m_label);
        if (action == "click") {
            QTest::mouseClick(m_label, Qt::LeftButton);
        } else if (action == "click again") { // the window system delivers it to the open popup
            QTest::mouseClick(m_panel->windowHandle(), Qt::LeftButton, {},
                              m_panel->mapFromGlobal(m_label->mapToGlobal(m_label->rect().center())));
        } else if (action == "click outside") {
            QTest::mouseClick(m_panel, Qt::LeftButton, {}, QPoint(-150, -40));
        } else if (action == "hide") {
            m_panel->hideManual();
        } else if (action == "disable") {
            m_panel->setDisplayEnable(false);
        } else if (action == "menu action") {
            QCOMPARE(accessible->role(), QAccessible::ButtonMenu);
            accessible->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
        } else {
            QTest::keySequence(m_panel->isVisible() ? static_cast<QWidget *>(m_content) : m_label,
                               QKeySequence(action));
        }
        QCOMPARE(bool(accessible->state().expanded), m_panel->isVisible());
    }

    std::unique_ptr<QWidget> m_window;
    LabelWidthFloatPanel *m_label = nullptr;
    FloatPanel *m_panel = nullptr;
    QPushButton *m_content = nullptr;
};

QTEST_MAIN(FloatPanelTest)
#include "tst_float_panel.moc"
